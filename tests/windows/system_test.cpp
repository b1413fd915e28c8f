// What only Windows gives: devices of Plug and Play, other processes, the registry, message loops,
// windows, code pages and resources. The library is the finished DLL.

#include <windows.h>

#include <setupapi.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

#include "library/transfer_fixture.hpp"
#include "platform/windows/device_interface.hpp"

namespace vexa::test {
namespace {

using ::testing::ElementsAre;

constexpr char kHold[] = "--hold";  // argument of this program: opens a camera, streams, waits
constexpr wchar_t kHeld[] = L"VexaTestsCameraHeld";  // event, once it does
constexpr DWORD kPatience = 60000;                   // milliseconds; a bound, not an expectation

/// This program once more, holding the first free camera.
class OtherProcess {
 public:
  OtherProcess() : held_(::CreateEventW(nullptr, TRUE, FALSE, kHeld)) {
    char program[MAX_PATH] = {};
    ::GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string command = '"' + std::string(program) + "\" " + kHold;
    STARTUPINFOA start{};
    start.cb = sizeof start;
    EXPECT_TRUE(::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                 nullptr, &start, &process_));
    const HANDLE either[] = {held_, process_.hProcess};
    EXPECT_EQ(::WaitForMultipleObjects(2, either, FALSE, kPatience), WAIT_OBJECT_0);
  }
  ~OtherProcess() {
    Kill();
    ::CloseHandle(process_.hThread);
    ::CloseHandle(process_.hProcess);
    ::CloseHandle(held_);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  void Kill() {
    ::TerminateProcess(process_.hProcess, 9);
    ::WaitForSingleObject(process_.hProcess, kPatience);
  }

 private:
  HANDLE held_;
  PROCESS_INFORMATION process_{};
};

// The event is set when the first frame has arrived.
void VEXA_CALL SetHeld(HANDLE, DWORD, DWORD, DWORD, WORD, BYTE*, void* held) { ::SetEvent(held); }

int HoldACamera() {
  HANDLE camera = Vexa_Open();
  HANDLE held = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, kHeld);
  if (held == nullptr || !Vexa_SetTransferEndCallback(camera, SetHeld, held) ||
      !Vexa_StartTransfer(camera)) {
    return 1;
  }
  ::Sleep(INFINITE);
  return 0;
}

using SystemTest = TransferTest;

// Paths of the present cameras, as any program can find them.
std::vector<std::string> PresentCameras() {
  std::vector<std::string> paths;
  const GUID& interface_class = platform::kCameraInterfaceClass;
  const HDEVINFO set = ::SetupDiGetClassDevsA(&interface_class, nullptr, nullptr,
                                              DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  SP_DEVICE_INTERFACE_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD i = 0; ::SetupDiEnumDeviceInterfaces(set, nullptr, &interface_class, i, &device);
       ++i) {
    alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) char buffer[512];
    auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(buffer);
    detail->cbSize = sizeof *detail;
    EXPECT_TRUE(
        ::SetupDiGetDeviceInterfaceDetailA(set, &device, detail, sizeof buffer, nullptr, nullptr));
    paths.emplace_back(detail->DevicePath);
  }
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_NO_MORE_ITEMS});
  ::SetupDiDestroyDeviceInfoList(set);
  return paths;
}

TEST_F(SystemTest, CamerasAreFoundInTheOrderOfPlugAndPlay) {
  const auto first = Plug(0x0510);
  const auto second = Plug(0x0710);
  const auto third = Plug(0x0410);
  const auto paths = PresentCameras();
  EXPECT_EQ(paths.size(), 3U);
  const auto open_all = [&] {
    std::vector<WORD> products;
    std::vector<HANDLE> cameras;
    for (HANDLE camera = Vexa_Open(); camera != INVALID_HANDLE_VALUE; camera = Vexa_Open()) {
      cameras.push_back(camera);
      Vexa_GetCameraVersion(camera, nullptr, &products.emplace_back(), nullptr, nullptr);
    }
    EXPECT_EQ(GetLastError(), 259U);
    for (HANDLE camera : cameras) Vexa_Close(camera);
    return products;
  };
  EXPECT_THAT(open_all(), ElementsAre(0x0510, 0x0710, 0x0410));
  second->Unplug();
  EXPECT_THAT(PresentCameras(), ElementsAre(paths[0], paths[2]));
  EXPECT_EQ(::CreateFileA(paths[1].c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  EXPECT_THAT(open_all(), ElementsAre(0x0510, 0x0410));
  second->Replug();
  EXPECT_THAT(open_all(), ElementsAre(0x0510, 0x0710, 0x0410));
}

TEST_F(SystemTest, ACameraIsBusyUntilTheOtherProcessDies) {
  simulator::CameraConfig config = simulator::ForProduct(0x0510);
  config.pace = simulator::Pace::kFastest;
  twin_ = Plug(config);
  OtherProcess other;
  EXPECT_TRUE(twin_->Streaming());
  EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 259U);
  const auto second = Plug(0x0710);
  WORD product = 0;
  Vexa_GetCameraVersion(Open(), nullptr, &product, nullptr, nullptr);
  EXPECT_EQ(product, 0x0710) << "the free camera behind the busy one";
  other.Kill();
  // The system takes back the dead process's requests and handles in its own time.
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
  while (twin_->OpenHandles() != 0 && std::chrono::steady_clock::now() < end) ::Sleep(5);
  EXPECT_EQ(twin_->OpenHandles(), 0U);
  EXPECT_EQ(twin_->PendingReads(), 0U);
  EXPECT_FALSE(twin_->Streaming());
  camera_ = Open();
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(3));
  ExpectStopped();
}

TEST_F(SystemTest, MaxTransferSizeOfTheRegistryLimitsReads) {
  HKEY key = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\Orvane\\USBCamera\\Setting", 0,
                              nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  // Header and image, and the reads of the largest allowed and of the given size that they take.
  constexpr DWORD kFrame = 64 + 640 * 480;
  for (const DWORD limit : {DWORD{0}, DWORD{4096}, DWORD{0x10000}}) {
    ::RegSetValueExW(key, L"MaxTransferSize", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&limit),
                     sizeof limit);
    OpenFast(640, 480);
    twin_->Stall(true);
    Recorder& recorder = Record();
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    const std::uint64_t before = twin_->reads_filled();
    twin_->Stall(false);
    ASSERT_TRUE(recorder.AwaitFrames(5));
    ExpectStopped();
    const std::uint64_t frames = recorder.frames().size();
    const std::uint64_t reads = limit == 0 ? 1 : kFrame / limit + 1;
    EXPECT_GE(twin_->reads_filled() - before, frames * reads) << limit;
    // More frames may have been on their way than the library has delivered.
    EXPECT_LE(twin_->reads_filled() - before, twin_->frames_made() * reads + reads) << limit;
    Discard();
  }
  ::RegDeleteValueW(key, L"MaxTransferSize");
  ::RegCloseKey(key);
}

/// A window that remembers what the library posts to it.
class Window {
 public:
  explicit Window(HWND parent) {
    WNDCLASSA type{};
    type.lpfnWndProc = Procedure;
    type.lpszClassName = "VexaTests";
    ::RegisterClassA(&type);  // once; later ones find it there
    handle_ = ::CreateWindowExA(0, type.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0, 64, 64,
                                parent, nullptr, nullptr, nullptr);
    EXPECT_NE(handle_, nullptr);
    ::SetWindowLongPtrA(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~Window() { ::DestroyWindow(handle_); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  HWND handle() const { return handle_; }

  /// A message loop until there are so many messages; hands them over.
  std::vector<MSG> Receive(std::size_t count) {
    ::SetTimer(handle_, 1, kPatience, nullptr);
    MSG message{};
    while (received_.size() < count && ::GetMessageA(&message, nullptr, 0, 0) > 0) {
      if (message.message == WM_TIMER) break;
      ::TranslateMessage(&message);
      ::DispatchMessageA(&message);
    }
    ::KillTimer(handle_, 1);
    return std::exchange(received_, {});
  }

 private:
  static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* self = reinterpret_cast<Window*>(::GetWindowLongPtrA(handle, GWLP_USERDATA));
    if (message < VEXA_MSG_TRANSFER_END || message > VEXA_MSG_RCV_ERROR || self == nullptr) {
      return ::DefWindowProcA(handle, message, wparam, lparam);
    }
    self->received_.push_back({.hwnd = handle,
                               .message = message,
                               .wParam = wparam,
                               .lParam = lparam,
                               .time = 0,
                               .pt = {}});
    return 0;
  }

  HWND handle_ = nullptr;
  std::vector<MSG> received_;
};

TEST_F(SystemTest, MessagesArriveInAMessageLoop) {
  OpenTriggered(kSoftware | kSeparateHeader);
  Recorder& recorder = Record();
  Window window(HWND_MESSAGE);
  ASSERT_TRUE(Vexa_SetRcvMsgWnd(camera_, window.handle()));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  const auto expect = [&](const MSG& message, UINT number, DWORD value) {
    EXPECT_EQ(message.message, number);
    EXPECT_EQ(message.wParam, reinterpret_cast<WPARAM>(camera_));
    EXPECT_EQ(static_cast<DWORD>(message.lParam), value);
  };
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(Vexa_SoftTrigger(camera_));
    const std::vector<MSG> messages = window.Receive(2);
    ASSERT_EQ(messages.size(), 2U);
    const DWORD number = recorder.frames().back().number;
    expect(messages[0], 0xB102, number);
    expect(messages[1], 0xB101, number);
  }
  twin_->ShortenHeaders(1, 1);
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  const std::vector<MSG> messages = window.Receive(1);
  ASSERT_EQ(messages.size(), 1U);
  expect(messages[0], 0xB103, 0xE0000001);
  ExpectStopped();
}

TEST_F(SystemTest, DrawsIntoAWindow) {
  Plug();
  HANDLE camera = Open();
  Window window(nullptr);
  const HDC context = ::GetDC(window.handle());
  std::vector<BYTE> image(8 * 8 * 4);
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<BYTE>(3 * i);
  EXPECT_EQ(
      Vexa_Draw(camera, context, 4, 2, 16, 16, 0, 0, 8, 8, 8, 8, image.data(), VEXA_OUTPUT_BGR32),
      8);
  int different = 0;
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      const BYTE* bgr = &image[static_cast<std::size_t>(y / 2 * 8 + x / 2) * 4];
      different += ::GetPixel(context, 4 + x, 2 + y) == RGB(bgr[2], bgr[1], bgr[0]) ? 0 : 1;
    }
  }
  EXPECT_EQ(different, 0);
  ::ReleaseDC(window.handle(), context);
}

TEST_F(SystemTest, NarrowTextIsOfTheAnsiCodePage) {
  const std::wstring wide = L"Gr\u00F6\u00DFe \u00E9\u00BD";
  char narrow[32] = {};
  BOOL replaced = FALSE;
  ASSERT_GT(::WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, narrow, 32, nullptr, &replaced), 0);
  ASSERT_FALSE(replaced) << "code page " << ::GetACP() << " lacks the letters of this test";
  Plug();
  HANDLE camera = Open();
  DWORD number = 0;
  wchar_t wide_back[64] = {};
  char narrow_back[64] = {};
  EXPECT_TRUE(Vexa_WriteCameraUserIDA(camera, 7, narrow, sizeof narrow));
  EXPECT_TRUE(Vexa_ReadCameraUserIDW(camera, &number, wide_back, sizeof wide_back));
  EXPECT_EQ(wide_back, wide);
  const DWORD bytes = static_cast<DWORD>(2 * wide.size() + 2);
  EXPECT_TRUE(Vexa_WriteCameraUserIDW(camera, 8, wide.c_str(), bytes));
  EXPECT_TRUE(Vexa_ReadCameraUserIDA(camera, &number, narrow_back, sizeof narrow_back));
  EXPECT_STREQ(narrow_back, narrow);
  EXPECT_EQ(number, 8U);
  const auto folder = std::filesystem::temp_directory_path();
  const std::wstring file = folder.wstring() + wide + L".bmp";
  const BYTE pixel[4] = {1, 2, 3, 4};
  EXPECT_TRUE(Vexa_SaveImageA(1, 1, VEXA_OUTPUT_MONO8, pixel,
                              (folder.string() + narrow + ".bmp").c_str(), 0));
  EXPECT_TRUE(::DeleteFileW(file.c_str())) << ::GetLastError();
}

TEST(VersionResource, IsWhatTheLibraryAnswers) {
  wchar_t path[MAX_PATH] = {};
  ::GetModuleFileNameW(::GetModuleHandleW(L"VexaAPI.dll"), path, MAX_PATH);
  std::vector<BYTE> resource(::GetFileVersionInfoSizeW(path, nullptr));
  ASSERT_TRUE(::GetFileVersionInfoW(path, 0, static_cast<DWORD>(resource.size()), resource.data()));
  VS_FIXEDFILEINFO* fixed = nullptr;
  wchar_t* text = nullptr;
  UINT size = 0;
  ASSERT_TRUE(::VerQueryValueW(resource.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
  DWORD version[4] = {};
  EXPECT_TRUE(Vexa_GetDllVersion(&version[0], &version[1], &version[2], &version[3]));
  EXPECT_THAT(version, ElementsAre(fixed->dwFileVersionMS, fixed->dwFileVersionLS,
                                   fixed->dwProductVersionMS, fixed->dwProductVersionLS));
  EXPECT_EQ(version[0], DWORD{VEXA_PROJECT_MAJOR << 16 | VEXA_PROJECT_MINOR});
  EXPECT_EQ(fixed->dwFileType, DWORD{VFT_DLL});
  ASSERT_TRUE(::VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename",
                               reinterpret_cast<void**>(&text), &size));
  EXPECT_STREQ(text, L"VexaAPI.dll");
}

}  // namespace

int RunTests(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], kHold) == 0) return HoldACamera();
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}

}  // namespace vexa::test

int main(int argc, char** argv) { return vexa::test::RunTests(argc, argv); }
