// Control requests, registers and commands.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "device/registers.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::device::Command;
using vexa::device::RegisterBlock;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

constexpr DWORD kRegistersPerBlock = 128;

BOOL WriteRegisters(HANDLE camera, DWORD block, DWORD first, DWORD last, BYTE* data) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return data == nullptr
               ? vexa::error::kInvalidParameter
               : self.registers().WriteBlock(static_cast<WORD>(block & 0xFFFF), first, last, data);
  });
}

BOOL ReadRegisters(HANDLE camera, DWORD block, DWORD first, DWORD last, BYTE* data) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return data == nullptr
               ? vexa::error::kInvalidParameter
               : self.registers().ReadBlock(static_cast<WORD>(block & 0xFFFF), first, last, data);
  });
}

// The named blocks take only register numbers that exist.
using Access = BOOL (*)(HANDLE, DWORD, DWORD, DWORD, BYTE*);
BOOL AccessNamedBlock(Access access, HANDLE camera, RegisterBlock block, DWORD first, DWORD last,
                      BYTE* data) {
  if (first >= kRegistersPerBlock || last >= kRegistersPerBlock) {
    return Report(vexa::error::kInvalidParameter);
  }
  return access(camera, static_cast<DWORD>(block), first, last, data);
}

BOOL SendCommand(HANDLE camera, WORD word) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.registers().SendCommand(word); });
}

}  // namespace

BOOL VEXA_CALL Vexa_VendorRequest(HANDLE camera, BYTE request_type, BYTE request, WORD value,
                                  WORD index, WORD length, BYTE* buffer, DWORD* bytes_returned) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (buffer == nullptr && length != 0) {
      return vexa::error::kInvalidParameter;
    }
    std::uint32_t returned = 0;
    const Status status = self.channel().Send({.request_type = request_type,
                                               .request = request,
                                               .value = value,
                                               .index = index,
                                               .length = length},
                                              buffer, &returned);
    Store(bytes_returned, returned);
    return status;
  });
}

BOOL VEXA_CALL Vexa_SetFPGAData(HANDLE camera, DWORD block, DWORD first, DWORD last, BYTE* data) {
  return WriteRegisters(camera, block, first, last, data);
}

BOOL VEXA_CALL Vexa_GetFPGAData(HANDLE camera, DWORD block, DWORD first, DWORD last, BYTE* data) {
  return ReadRegisters(camera, block, first, last, data);
}

BOOL VEXA_CALL Vexa_SetJBARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(WriteRegisters, camera, RegisterBlock::kJba, first, last, data);
}

BOOL VEXA_CALL Vexa_GetJBARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(ReadRegisters, camera, RegisterBlock::kJba, first, last, data);
}

BOOL VEXA_CALL Vexa_SetIOARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(WriteRegisters, camera, RegisterBlock::kIoa, first, last, data);
}

BOOL VEXA_CALL Vexa_GetIOARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(ReadRegisters, camera, RegisterBlock::kIoa, first, last, data);
}

BOOL VEXA_CALL Vexa_SetITARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(WriteRegisters, camera, RegisterBlock::kIta, first, last, data);
}

BOOL VEXA_CALL Vexa_GetITARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data) {
  return AccessNamedBlock(ReadRegisters, camera, RegisterBlock::kIta, first, last, data);
}

BOOL VEXA_CALL Vexa_ResetCamera(HANDLE camera, DWORD mode) {
  return SendCommand(camera, static_cast<WORD>((mode & 3) << 4));
}

BOOL VEXA_CALL Vexa_ResetCounter(HANDLE camera) {
  return SendCommand(camera, static_cast<WORD>(Command::kResetCounter));
}

BOOL VEXA_CALL Vexa_ClearBuffer(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.channel().ClearBuffer(); });
}
