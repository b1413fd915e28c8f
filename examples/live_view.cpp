// Fetches frames by polling, with C++ around the C interface: a camera that closes itself, errors
// as exceptions, and the level control keeping the picture at a target brightness.
//
//   live_view [FRAMES [FILE]]    takes FRAMES (default 20), then saves the last one as FILE
//                                (default live_view.jpg)
//
// C++17, no library but VexaAPI.

#include <VexaAPI.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

void Check(BOOL result, const char* what) {
  if (result == FALSE) {
    throw std::runtime_error(std::string(what) + " (error " + std::to_string(GetLastError()) + ")");
  }
}

struct CloseCamera {
  void operator()(void* camera) const { Vexa_Close(camera); }
};
using Camera = std::unique_ptr<void, CloseCamera>;

Camera OpenCamera() {
  HANDLE camera = Vexa_Open();
  Check(camera != INVALID_HANDLE_VALUE, "no free camera found");
  return Camera(camera);
}

struct Frame {
  DWORD width = 0;
  DWORD height = 0;
  DWORD number = 0;
  std::vector<BYTE> pixels;
};

/// The next frame; starts the transfer if it is not running.
void Take(HANDLE camera, Frame& frame) {
  constexpr DWORD kTimeOutMs = 5000;
  DWORD copied = 0;
  Check(Vexa_TakeRawSnapShot(camera, frame.pixels.data(), static_cast<DWORD>(frame.pixels.size()),
                             &copied, &frame.number, kTimeOutMs),
        "no frame");
}

/// One step towards the target brightness; true when there was nothing to change.
bool Regulate(HANDLE camera, const Frame& frame) {
  const auto sum =
      std::accumulate(frame.pixels.begin(), frame.pixels.end(), static_cast<unsigned long long>(0));
  const auto level = static_cast<DWORD>(sum / frame.pixels.size());
  DWORD changed = 0;
  Check(Vexa_ALC(camera, level, &changed), "the level control failed");
  DWORD exposure = 0;
  WORD gain = 0;
  Check(Vexa_GetExposureClock(camera, &exposure), "cannot read the exposure");
  Check(Vexa_GetGain(camera, &gain), "cannot read the gain");
  std::printf("frame %lu: level %lu, exposure %lu clocks, gain %u\n",
              static_cast<unsigned long>(frame.number), static_cast<unsigned long>(level),
              static_cast<unsigned long>(exposure), gain);
  return changed == 0;
}

void Run(int frames, const char* file_name) {
  const Camera camera = OpenCamera();
  Frame frame;
  WORD mode = 0;
  WORD color_array = 0;
  DWORD x = 0;
  DWORD y = 0;
  Check(Vexa_SetTransferBitsPerPixel(camera.get(), VEXA_TRANSFER_8BIT), "no 8 bits per pixel");
  Check(Vexa_GetScanMode(camera.get(), &mode, &x, &y, &frame.width, &frame.height), "no scan mode");
  Check(Vexa_SetALCTargetLevel(camera.get(), 110), "cannot set the target");
  Check(Vexa_SetALCMode(camera.get(), 1), "cannot switch the level control on");
  frame.pixels.resize(std::size_t{frame.width} * frame.height);

  for (int i = 0; i < frames; ++i) {
    Take(camera.get(), frame);
    if (Regulate(camera.get(), frame)) {
      std::printf("settled\n");
    }
  }
  Check(Vexa_StopTransfer(camera.get()), "cannot stop the transfer");

  std::vector<BYTE> picture(3 * frame.pixels.size());
  Check(Vexa_GetColorArray(camera.get(), &color_array), "no colour array");
  Check(Vexa_ColorInterpolation(frame.width, frame.height, color_array, frame.pixels.data(),
                                picture.data(), VEXA_INTERP_BILINEAR, VEXA_OUTPUT_BGR24),
        "cannot interpolate the colours");
  Check(Vexa_SaveImageA(frame.width, frame.height, VEXA_OUTPUT_BGR24, picture.data(), file_name, 5),
        "cannot save the picture");
  std::printf("%s\n", file_name);
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::atoi(argv[1]) : 20;
  if (argc > 3 || frames < 1) {
    std::fprintf(stderr, "usage: live_view [FRAMES [FILE]]\n");
    return EXIT_FAILURE;
  }
  try {
    Run(frames, argc > 2 ? argv[2] : "live_view.jpg");
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "live_view: %s\n", failure.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
