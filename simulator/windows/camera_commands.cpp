#include "simulator/windows/camera_commands.hpp"

#include <map>
#include <tuple>
#include <type_traits>

namespace vexa::simulator {
namespace {

constexpr Status kInvalidFunction{1};  // ERROR_INVALID_FUNCTION

using Handler = void (*)(TwinCamera& camera, Reader& in, Writer* out);

template <auto kFunction, typename Result, typename... Arguments>
void Call(TwinCamera& camera, Reader& in, Writer* out) {
  std::tuple<std::decay_t<Arguments>...> arguments;
  std::apply([&in](auto&... each) { in(each...); }, arguments);
  const auto call = [&camera](auto&... each) { return (camera.*kFunction)(each...); };
  if constexpr (std::is_void_v<Result>) {
    std::apply(call, arguments);
  } else {
    (*out)(std::apply(call, arguments));
  }
}

template <auto kFunction, typename Result, typename... Arguments>
constexpr Handler HandlerOf(Result (TwinCamera::*)(Arguments...)) {
  return Call<kFunction, Result, Arguments...>;
}
template <auto kFunction, typename Result, typename... Arguments>
constexpr Handler HandlerOf(Result (TwinCamera::*)(Arguments...) const) {
  return Call<kFunction, Result, Arguments...>;
}

template <auto kFunction>
constexpr Handler kCall = HandlerOf<kFunction>(kFunction);

const std::map<Command, Handler>& Handlers() {
  static const std::map<Command, Handler> handlers = {
      {Command::kFailReads, kCall<&TwinCamera::FailReads>},
      {Command::kRefuseReads, kCall<&TwinCamera::RefuseReads>},
      {Command::kRefuseReset, kCall<&TwinCamera::RefuseReset>},
      {Command::kShortenFrames, kCall<&TwinCamera::ShortenFrames>},
      {Command::kLengthenFrames, kCall<&TwinCamera::LengthenFrames>},
      {Command::kShortenHeaders, kCall<&TwinCamera::ShortenHeaders>},
      {Command::kDropFrames, kCall<&TwinCamera::DropFrames>},
      {Command::kStall, kCall<&TwinCamera::Stall>},
      {Command::kFailControl, kCall<&TwinCamera::FailControl>},
      {Command::kDelayControl, kCall<&TwinCamera::DelayControl>},
      {Command::kLimitControl, kCall<&TwinCamera::LimitControl>},
      {Command::kSetUnanswering, kCall<&TwinCamera::SetUnanswering>},
      {Command::kSetAnswering, kCall<&TwinCamera::SetAnswering>},
      {Command::kSetBusyElsewhere, kCall<&TwinCamera::SetBusyElsewhere>},
      {Command::kSetDriverVersion, kCall<&TwinCamera::SetDriverVersion>},
      {Command::kPulsePin, kCall<&TwinCamera::PulsePin>},
      {Command::kSetPin, kCall<&TwinCamera::SetPin>},
      {Command::kSetScene, kCall<&TwinCamera::SetScene>},
      {Command::kLog, kCall<&TwinCamera::Log>},
      {Command::kClearLog, kCall<&TwinCamera::ClearLog>},
      {Command::kSetLogLimit, kCall<&TwinCamera::SetLogLimit>},
      {Command::kPeekRegister, kCall<&TwinCamera::PeekRegister>},
      {Command::kPokeRegister, kCall<&TwinCamera::PokeRegister>},
      {Command::kFramesMade, kCall<&TwinCamera::frames_made>},
      {Command::kFramesDropped, kCall<&TwinCamera::frames_dropped>},
      {Command::kReadsFilled, kCall<&TwinCamera::reads_filled>},
      {Command::kOpenHandles, kCall<&TwinCamera::OpenHandles>},
      {Command::kPendingReads, kCall<&TwinCamera::PendingReads>},
      {Command::kStreaming, kCall<&TwinCamera::Streaming>},
  };
  return handlers;
}

}  // namespace

Status ExecuteOnCamera(Command command, TwinCamera& camera, Reader& in, Writer* out) {
  const auto handler = Handlers().find(command);
  if (handler == Handlers().end()) return kInvalidFunction;
  handler->second(camera, in, out);
  return error::kNone;
}

}  // namespace vexa::simulator
