#include "transfer/processor_idle.hpp"

#include <array>
#include <span>

#include "platform/bytes.hpp"
#include "platform/last_error.hpp"

namespace vexa::transfer {
namespace {

using platform::Guid;
using platform::PowerBinding;
using platform::PowerSchemeFunctions;
using platform::ProcessorSchemeFunctions;

// Settings of Windows, from its winnt.h.
constexpr Guid kProcessorSettings{
    0x54533251, 0x82BE, 0x4824, {0x96, 0xC1, 0x47, 0xB6, 0x0B, 0x74, 0x0D, 0x00}};
constexpr Guid kProcessorIdleDisable{
    0x5D76A2CA, 0xE8C0, 0x402F, {0xA1, 0x33, 0x21, 0x58, 0x49, 0x2D, 0x58, 0xAD}};
constexpr Guid kProcessorIdleStatePolicy{
    0x68F262A7, 0xF621, 0x4069, {0xB9, 0xA5, 0x48, 0x74, 0x16, 0x9B, 0xE2, 0x3C}};

constexpr std::uint32_t kWindowsNt = 2;  // VER_PLATFORM_WIN32_NT

/// The identifier of the active scheme, freed with the object.
class ActiveScheme {
 public:
  explicit ActiveScheme(const PowerBinding& binding) : binding_(binding) {
    status_ = Status(binding.schemes()->get_active_scheme(nullptr, &scheme_));
  }
  ~ActiveScheme() {
    if (scheme_ != nullptr) {
      binding_.FreeScheme(scheme_);
    }
  }
  ActiveScheme(const ActiveScheme&) = delete;
  ActiveScheme& operator=(const ActiveScheme&) = delete;

  Status status() const { return status_; }

  Status ReadIndex(PowerSchemeFunctions::ReadIndex read, const Guid& setting,
                   std::uint32_t* index) const {
    return Status(read(nullptr, scheme_, &kProcessorSettings, &setting, index));
  }
  Status WriteIndex(PowerSchemeFunctions::WriteIndex write, const Guid& setting,
                    std::uint32_t index) const {
    return Status(write(nullptr, scheme_, &kProcessorSettings, &setting, index));
  }
  /// Makes the scheme active again, so that its changes apply.
  Status Activate() const {
    return Status(binding_.schemes()->set_active_scheme(nullptr, scheme_));
  }

 private:
  const PowerBinding& binding_;
  Guid* scheme_ = nullptr;
  Status status_;
};

Status SetIdleDisable(const PowerBinding& binding, const IdleState& state) {
  const ActiveScheme scheme(binding);
  Status status = scheme.status();
  if (status.ok()) {
    status = scheme.WriteIndex(binding.schemes()->write_ac_value_index, kProcessorIdleDisable,
                               state.ac == 0 ? 1 : 0);
  }
  if (status.ok()) {
    status = scheme.WriteIndex(binding.schemes()->write_dc_value_index, kProcessorIdleDisable,
                               state.dc == 0 ? 1 : 0);
  }
  return status.ok() ? scheme.Activate() : status;
}

/// The indexes of a setting for both supplies.
Status ReadIndexes(const PowerBinding& binding, const ActiveScheme& scheme, const Guid& setting,
                   IdleState* indexes) {
  Status status = scheme.status();
  if (status.ok()) {
    status = scheme.ReadIndex(binding.schemes()->read_ac_value_index, setting, &indexes->ac);
  }
  if (status.ok()) {
    status = scheme.ReadIndex(binding.schemes()->read_dc_value_index, setting, &indexes->dc);
  }
  return status;
}

Status GetIdleDisable(const PowerBinding& binding, IdleState* state) {
  IdleState indexes;
  const Status status =
      ReadIndexes(binding, ActiveScheme(binding), kProcessorIdleDisable, &indexes);
  *state = {.ac = indexes.ac == 0 ? 1U : 0U, .dc = indexes.dc == 0 ? 1U : 0U};
  return status;
}

/// A possible value of the idle-state policy: a PROCESSOR_IDLESTATE_POLICY, revision and flags
/// first.
class IdlePolicy {
 public:
  Status Read(const PowerSchemeFunctions& functions, std::uint32_t index) {
    size_ = static_cast<std::uint32_t>(data_.size());
    const Status status(functions.read_possible_value(nullptr, &kProcessorSettings,
                                                      &kProcessorIdleStatePolicy, &type_, index,
                                                      data_.data(), &size_));
    return status.ok() && size_ < kFlagsOffset + 2 ? error::kInvalidData : status;
  }

  Status Write(const PowerSchemeFunctions& functions, std::uint32_t index) {
    return Status(functions.write_possible_value(nullptr, &kProcessorSettings,
                                                 &kProcessorIdleStatePolicy, type_, index,
                                                 data_.data(), size_));
  }

  bool enabled() const { return (LoadLe16(data_, kFlagsOffset) & kDisabled) == 0; }
  void set_enabled(bool enabled) {
    const std::uint16_t others = LoadLe16(data_, kFlagsOffset) & ~kDisabled & 0xFFFF;
    StoreLe16(data_, kFlagsOffset,
              static_cast<std::uint16_t>(enabled ? others : others | kDisabled));
  }

 private:
  static constexpr std::size_t kFlagsOffset = 2;
  static constexpr std::uint16_t kDisabled = 0x0002;

  std::uint32_t type_ = 0;
  std::uint32_t size_ = 0;
  alignas(4) std::array<std::uint8_t, 256> data_{};
};

Status ChangeIdlePolicy(const PowerSchemeFunctions& functions, std::uint32_t index, bool enabled) {
  IdlePolicy policy;
  const Status status = policy.Read(functions, index);
  if (!status.ok()) {
    return status;
  }
  policy.set_enabled(enabled);
  return policy.Write(functions, index);
}

Status SetIdlePolicies(const PowerBinding& binding, const IdleState& state) {
  const ActiveScheme scheme(binding);
  IdleState indexes;
  Status status = ReadIndexes(binding, scheme, kProcessorIdleStatePolicy, &indexes);
  if (status.ok()) {
    status = ChangeIdlePolicy(*binding.schemes(), indexes.ac, state.ac != 0);
  }
  if (status.ok()) {
    status = ChangeIdlePolicy(*binding.schemes(), indexes.dc, state.dc != 0);
  }
  return status.ok() ? scheme.Activate() : status;
}

Status GetIdlePolicies(const PowerBinding& binding, IdleState* state) {
  IdleState indexes;
  IdlePolicy ac;
  IdlePolicy dc;
  Status status = ReadIndexes(binding, ActiveScheme(binding), kProcessorIdleStatePolicy, &indexes);
  if (status.ok()) {
    status = ac.Read(*binding.schemes(), indexes.ac);
  }
  if (status.ok()) {
    status = dc.Read(*binding.schemes(), indexes.dc);
  }
  *state = {.ac = ac.enabled() ? 1U : 0U, .dc = dc.enabled() ? 1U : 0U};
  return status;
}

/// The active processor scheme: a MACHINE_PROCESSOR_POWER_POLICY, which holds, behind its revision,
/// one PROCESSOR_POWER_POLICY of 76 bytes for AC and one for DC. Its entries of 20 bytes begin at
/// byte 16 and end with their flags.
class ProcessorScheme {
 public:
  explicit ProcessorScheme(const ProcessorSchemeFunctions& functions) : functions_(functions) {}

  Status Read() {
    const Status status = Outcome(functions_.get_active_scheme(&number_));
    return status.ok() ? Outcome(functions_.read_processor_scheme(number_, data_.data())) : status;
  }

  Status WriteAndActivate() {
    const Status status = Outcome(functions_.write_processor_scheme(number_, data_.data()));
    return status.ok() ? Outcome(functions_.set_active_scheme(number_, nullptr, nullptr)) : status;
  }

  /// Whether one of the first two entries allows the promotion to a deeper idle state.
  bool AllowsPromotion(std::size_t policy) const {
    return ((LoadLe32(data_, FlagsOffset(policy, 0)) | LoadLe32(data_, FlagsOffset(policy, 1))) &
            kAllowPromotion) != 0;
  }

  void AllowPromotion(std::size_t policy, bool allow) {
    for (const std::size_t entry : {0U, 1U}) {
      const std::size_t offset = FlagsOffset(policy, entry);
      const std::uint32_t others = LoadLe32(data_, offset) & ~kAllowPromotion;
      StoreLe32(data_, offset, allow ? others | kAllowPromotion : others);
    }
  }

 private:
  static constexpr std::uint32_t kAllowPromotion = 0x00000002;

  static constexpr std::size_t FlagsOffset(std::size_t policy, std::size_t entry) {
    return 4 + 76 * policy + 16 + 20 * entry + 16;
  }

  static Status Outcome(std::uint8_t result) {
    if (result != 0) {
      return {};
    }
    const Status status = platform::LastErrorCode();
    return status.ok() ? error::kLastErrorKept : status;
  }

  const ProcessorSchemeFunctions& functions_;
  std::uint32_t number_ = 0;
  alignas(4) std::array<std::uint8_t, 156> data_{};
};

constexpr std::size_t kAc = 0;
constexpr std::size_t kDc = 1;

Status SetPromotion(const PowerBinding& binding, const IdleState& state) {
  ProcessorScheme scheme(*binding.processor_schemes());
  const Status status = scheme.Read();
  if (!status.ok()) {
    return status;
  }
  // These versions of the system keep one bit, so one bit of the caller's value counts.
  scheme.AllowPromotion(kAc, (state.ac & 1) != 0);
  scheme.AllowPromotion(kDc, (state.dc & 1) != 0);
  return scheme.WriteAndActivate();
}

Status GetPromotion(const PowerBinding& binding, IdleState* state) {
  ProcessorScheme scheme(*binding.processor_schemes());
  const Status status = scheme.Read();
  *state = {.ac = scheme.AllowsPromotion(kAc) ? 1U : 0U,
            .dc = scheme.AllowsPromotion(kDc) ? 1U : 0U};
  return status;
}

/// Whether the binding has the functions of the interface.
Status Usable(const PowerBinding& binding, IdleInterface kind) {
  if (!binding.load_error().ok()) {
    return binding.load_error();
  }
  const bool present = kind == IdleInterface::kProcessorScheme
                           ? binding.processor_schemes() != nullptr
                           : binding.schemes() != nullptr;
  return present ? Status() : error::kProcedureNotFound;
}

}  // namespace

IdleInterface IdleInterfaceOf(const platform::OsVersion& version) {
  if (version.platform_id != kWindowsNt || version.major < 6) {
    return IdleInterface::kProcessorScheme;
  }
  return version.minor == 0 ? IdleInterface::kIdleStatePolicy : IdleInterface::kIdleDisable;
}

Status SetProcessorIdleState(const PowerBinding& binding, IdleInterface kind,
                             const IdleState& state) {
  const Status usable = Usable(binding, kind);
  if (!usable.ok()) {
    return usable;
  }
  switch (kind) {
    case IdleInterface::kIdleDisable:
      return SetIdleDisable(binding, state);
    case IdleInterface::kIdleStatePolicy:
      return SetIdlePolicies(binding, state);
    default:
      return SetPromotion(binding, state);
  }
}

Status GetProcessorIdleState(const PowerBinding& binding, IdleInterface kind, IdleState* state) {
  const Status usable = Usable(binding, kind);
  if (!usable.ok()) {
    return usable;
  }
  switch (kind) {
    case IdleInterface::kIdleDisable:
      return GetIdleDisable(binding, state);
    case IdleInterface::kIdleStatePolicy:
      return GetIdlePolicies(binding, state);
    default:
      return GetPromotion(binding, state);
  }
}

}  // namespace vexa::transfer
