/// \file
/// Finding a camera to open.
#pragma once

#include <cstdint>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/driver.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// Opens the first camera, in the driver's order, that no other handle uses and that answers. One
/// that does not answer gets a first-stage recovery and a retry, then a second-stage recovery and a
/// retry, where its driver supports recovery. On success `channel` holds the open device and
/// `identity` is read; otherwise the status is that of the ended enumeration.
Status OpenFirstFreeCamera(platform::Driver& driver, ControlChannel& channel,
                           CameraIdentity& identity);

/// The largest read request in bytes for a configured value (0: not configured): a multiple of 512
/// from 4096 up to 3 MiB on system major versions below 6, up to 512 KiB on later ones, which do
/// not pin larger transfers.
std::uint32_t LimitTransferSize(std::uint32_t configured, std::uint32_t os_major_version);

/// The largest read request for this user on this system, from the registry.
std::uint32_t ReadMaxTransferSize();

}  // namespace vexa::device
