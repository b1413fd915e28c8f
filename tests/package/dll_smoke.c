/* Loads VexaAPI.dll as an application without its header's imports would, by name, and makes the
 * calls that need no camera. Says what went wrong; exit code 0 only when everything was right. */
#define VEXA_BUILDING_LIBRARY /* plain declarations: nothing is imported at link time */
#include <VexaAPI.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void Expect(int condition, const char* what) {
  if (condition) return;
  printf("FAILED: %s (last error %lu)\n", what, GetLastError());
  ++failures;
}

/* The function of this name in the DLL, by the type of its declaration. */
#define LOAD(module, name)                                   \
  __typeof__(&Vexa_##name) name;                             \
  {                                                          \
    FARPROC address = GetProcAddress(module, "Vexa_" #name); \
    Expect(address != NULL, "the DLL exports Vexa_" #name);  \
    if (address == NULL) return;                             \
    memcpy(&name, &address, sizeof name);                    \
  }

static void CheckVersion(HMODULE module) {
  const DWORD high = VEXA_PROJECT_MAJOR << 16 | VEXA_PROJECT_MINOR;
  const DWORD low = VEXA_PROJECT_PATCH << 16;
  DWORD version[4] = {~0u, ~0u, ~0u, ~0u};
  LOAD(module, GetDllVersion)
  Expect(GetDllVersion(&version[0], &version[1], &version[2], &version[3]) == 1,
         "GetDllVersion answers 1");
  Expect(version[0] == high && version[1] == low, "the file version is the project's");
  Expect(version[2] == high && version[3] == low, "the product version is the project's");
}

static void CheckWithoutCamera(HMODULE module) {
  WORD color_array = 0;
  LOAD(module, Open)
  LOAD(module, GetColorArray)
  LOAD(module, Close)
  Expect(Open() == INVALID_HANDLE_VALUE, "Open finds no camera");
  SetLastError(0);
  Expect(!GetColorArray(INVALID_HANDLE_VALUE, &color_array), "an invalid handle is refused");
  Expect(GetLastError() == ERROR_INVALID_PARAMETER, "an invalid handle gives 87");
  SetLastError(4711);
  Close(INVALID_HANDLE_VALUE);
  Expect(GetLastError() == 4711, "closing no camera leaves the last error");
}

static void CheckPicture(HMODULE module) {
  /* R G / G B, every sample in its own channel of B, G, R. */
  static const BYTE raw[4] = {10, 20, 30, 40};
  static const BYTE expected[12] = {0, 0, 10, 0, 20, 0, 0, 30, 0, 40, 0, 0};
  const DWORD file_size = 54 + 2 * 8; /* headers, and two rows of 6 bytes padded to 8 */
  BYTE picture[12];
  WCHAR folder[MAX_PATH - 14], file_name[MAX_PATH];
  WIN32_FILE_ATTRIBUTE_DATA file;
  LOAD(module, ColorInterpolation)
  LOAD(module, SaveImageW)
  memset(picture, 0xEE, sizeof picture);
  Expect(ColorInterpolation(2, 2, VEXA_COLOR_ARRAY_RGGB, raw, picture, VEXA_INTERP_MOSAIC,
                            VEXA_OUTPUT_BGR24),
         "ColorInterpolation succeeds");
  Expect(memcmp(picture, expected, sizeof picture) == 0, "the picture has the right bytes");

  if (!GetTempPathW(MAX_PATH - 14, folder) || !GetTempFileNameW(folder, L"vxa", 0, file_name)) {
    Expect(0, "there is a place for a temporary file");
    return;
  }
  DeleteFileW(file_name);
  wcscat(file_name, L".bmp");
  Expect(SaveImageW(2, 2, VEXA_OUTPUT_BGR24, picture, file_name, 0), "SaveImageW succeeds");
  Expect(GetFileAttributesExW(file_name, GetFileExInfoStandard, &file) && file.nFileSizeHigh == 0 &&
             file.nFileSizeLow == file_size,
         "the bitmap has the right length");
  DeleteFileW(file_name);
}

int main(void) {
  HMODULE module = LoadLibraryW(L"VexaAPI.dll");
  Expect(module != NULL, "VexaAPI.dll loads");
  if (module != NULL) {
    CheckVersion(module);
    CheckWithoutCamera(module);
    CheckPicture(module);
    Expect(FreeLibrary(module), "VexaAPI.dll unloads");
  }
  printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
