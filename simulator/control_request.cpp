#include "simulator/control_request.hpp"

#include "platform/bytes.hpp"

namespace vexa::simulator {

Status ParseRecord(std::span<const std::uint8_t> record, std::size_t output_size,
                   ControlRequest* request) {
  if (record.size() < kRecordHeaderSize) return error::kInvalidParameter;
  request->type = record[0];
  request->request = record[1];
  request->value = LoadLe16(record, 2);
  request->index = LoadLe16(record, 4);
  request->length = LoadLe16(record, 6);
  request->timeout_ms = LoadLe32(record, 8);
  request->data = record.subspan(kRecordHeaderSize);
  const std::size_t data_size = request->device_to_host() ? 0 : request->length;
  if (request->data.size() != data_size) return error::kInvalidParameter;
  if (request->device_to_host() && output_size < request->length) return error::kInvalidParameter;
  return error::kNone;
}

}  // namespace vexa::simulator
