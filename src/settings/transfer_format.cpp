#include "settings/transfer_format.hpp"

#include <array>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

constexpr std::uint8_t kBlockSize = 6;
constexpr std::uint8_t kRequestCode = 0x13;
constexpr std::size_t kCode = 2;

}  // namespace

Status TransferFormat::Refresh() {
  std::array<std::uint8_t, kBlockSize> block{};
  const Status status = channel_.Read(device::Request::kTransferFormat, block);
  if (status.ok()) {
    code_ = LoadLe32(block, kCode);
  }
  return status;
}

Status TransferFormat::Set(std::uint32_t code) {
  const std::uint32_t supported = code & identity_.transfer_format_mask();
  if (supported == 0) {
    return error::kInvalidParameter;
  }
  std::array<std::uint8_t, kBlockSize> block{kBlockSize, kRequestCode};
  StoreLe32(block, kCode, supported);
  const Status status = channel_.Write(device::Request::kTransferFormat, block);
  if (status.ok()) {
    code_ = supported;
  }
  return status;
}

}  // namespace vexa::settings
