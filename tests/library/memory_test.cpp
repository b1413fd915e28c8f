// Camera memory and user ID.

#include <array>
#include <numeric>

#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

using ::testing::ElementsAre;
using Bytes = std::vector<BYTE>;

class MemoryTest : public CameraTest {
 protected:
  HANDLE OpenFirmware(std::uint16_t firmware, std::uint16_t product_id = 0x0510) {
    simulator::CameraConfig config = simulator::ForProduct(product_id);
    config.firmware = firmware;
    return OpenOnly(config);
  }
};

TEST_F(MemoryTest, RamTravelsInChunks) {
  HANDLE camera = OpenFirmware(0x0100);
  struct Case {
    WORD first, last;
    Lines requests;
    DWORD total;
  };
  Bytes data(0x10000);
  std::iota(data.begin(), data.end(), BYTE{1});
  const Case cases[] = {
      {0, 0x1FFF, {"A0 0000 0000 +4096", "A0 1000 0000 +4096"}, 0x2000},
      {0x3FFF, 0x5000, {"A0 3FFF 0000 +4096", "A0 4FFF 0000 +2"}, 0x1002},
      {0x4000, 0x4001, {"F0 4000 0000 +2"}, 2},
      {0xE600, 0xE600, {"A0 E600 0000 +1"}, 1},
      {0xE600, 0xE601, {"F0 E600 0000 +2"}, 2},
      {0xEFFF, 0xFFFF, {"F0 EFFF 0000 +4096", "F0 FFFF 0000 +1"}, 0x1001},
      {5, 4, {}, 0},
      {0, 0xFFFF, {}, 0},
  };
  for (const Case& test : cases) {
    DWORD written = 99, read = 99;
    Bytes back(test.total + 1, 0xEE);
    EXPECT_TRUE(Vexa_WriteRAM(camera, test.first, test.last, data.data(), &written));
    const Lines wire = Wire(*twin_);
    EXPECT_TRUE(Vexa_ReadRAM(camera, test.first, test.last, back.data(), &read));
    EXPECT_TRUE(written == test.total && read == test.total);
    EXPECT_TRUE(std::equal(data.begin(), data.begin() + test.total, back.begin()));
    EXPECT_EQ(back.back(), 0xEE) << "nothing behind the range";
    Lines reads;
    ASSERT_EQ(wire.size(), test.requests.size());
    for (std::size_t i = 0; i < wire.size(); ++i) {
      reads.push_back("C0 " + test.requests[i]);
      EXPECT_THAT(wire[i], ::testing::StartsWith("40 " + test.requests[i].substr(0, 13) + "["));
    }
    EXPECT_EQ(Wire(*twin_), reads);
  }
}

TEST_F(MemoryTest, ChunksThatFailOrStopShort) {
  HANDLE camera = OpenFirmware(0x0100);
  Bytes data(0x2000, 7);
  DWORD total = 99;
  const simulator::RequestMatcher second{.request = 0xA0, .value = std::uint16_t{0x1000}};
  twin_->LimitControl(second, 0, 1);
  EXPECT_EQ(ErrorOf(Vexa_WriteRAM(camera, 0, 0x1FFF, data.data(), &total)), 31U);
  twin_->FailControl(second, 121, 1);
  EXPECT_EQ(ErrorOf(Vexa_ReadRAM(camera, 0, 0x1FFF, data.data(), &total)), 121U);
  EXPECT_EQ(total, 99U);
  EXPECT_EQ(Wire(*twin_).size(), 4U);
  twin_->LimitControl({.request = 0xA0}, 100, 1);
  EXPECT_TRUE(Vexa_ReadRAM(camera, 0, 0x10FF, data.data(), &total));
  EXPECT_THAT(Wire(*twin_), ElementsAre("C0 A0 0000 0000 +4096", "C0 A0 0064 0000 +4096",
                                        "C0 A0 1064 0000 +156"));
  EXPECT_EQ(total, 0x1100U);
}

TEST_F(MemoryTest, TheUserAreaFollowsTheFirmwareAndStays) {
  struct Case {
    std::uint16_t firmware, product_id;
    Lines requests;
  };
  const Case cases[] = {
      {0x0100, 0x0510, {"C0 FA 05E8 0000 +24", "C0 FA 0200 0000 +1024", "C0 FA 0100 0000 +256"}},
      {0x00FF, 0x0705, {"C0 F9 73E8 0151 +24", "C0 F9 7000 0151 +1024", "C0 F9 6F00 0151 +256"}},
  };
  for (const Case& test : cases) {
    HANDLE camera = OpenFirmware(test.firmware, test.product_id);
    Bytes data(1024), tail(24), back(1024);
    std::iota(data.begin(), data.end(), BYTE{3});
    EXPECT_TRUE(Vexa_WriteUserMemory(camera, data.data(), 0, 1024));
    EXPECT_TRUE(Vexa_WriteCameraUserIDA(camera, 0xA1B2C3D4, "Ofen 3", 7));
    Close(camera);
    twin_->Unplug();
    twin_->Replug();
    camera = Open();
    Wire(*twin_);
    DWORD number = 0;
    std::array<CHAR, 16> text{};
    EXPECT_TRUE(Vexa_ReadUserMemory(camera, tail.data(), 1000, 24) &&
                Vexa_ReadUserMemory(camera, back.data(), 0, 1024) &&
                Vexa_ReadCameraUserIDA(camera, &number, text.data(), 16));
    EXPECT_EQ(back, data);
    EXPECT_EQ(tail, Bytes(data.end() - 24, data.end()));
    EXPECT_EQ(number, 0xA1B2C3D4U);
    EXPECT_STREQ(text.data(), "Ofen 3");
    EXPECT_EQ(Wire(*twin_), test.requests);
    EXPECT_TRUE(Vexa_ReadUserMemory(camera, nullptr, 1024, 0));
    EXPECT_EQ(ErrorOf(Vexa_ReadUserMemory(camera, data.data(), 1000, 25) ||
                      Vexa_WriteUserMemory(camera, data.data(), 65535, 65535) ||
                      Vexa_ReadUserMemory(camera, nullptr, 0, 1) ||
                      Vexa_WriteRAM(camera, 0, 0, nullptr, nullptr) ||
                      Vexa_ReadCameraUserIDW(camera, nullptr, nullptr, 2)),
              87U);
    EXPECT_TRUE(Wire(*twin_).empty());
  }
}

TEST_F(MemoryTest, UserIdRecords) {
  HANDLE camera = OpenFirmware(0x0100);
  const std::string text = "abc" + std::string(300, 'n');
  const std::vector<WCHAR> wide(200, 'w'), ended = {0x0100, 0x0001, 0, 'x'};
  struct Case {
    bool wide;
    const void* text;
    DWORD size;
    std::size_t length;
  };
  const Case cases[] = {
      {false, "abc\0def", 8, 4},     {false, text.data(), 3, 3},     {false, nullptr, 9, 0},
      {false, text.data(), 0, 0},    {false, text.data(), 250, 250}, {false, text.data(), 300, 249},
      {true, ended.data(), 8, 6},    {true, wide.data(), 4, 4},      {true, wide.data(), 3, 2},
      {true, wide.data(), 250, 250}, {true, wide.data(), 252, 248},  {true, nullptr, 4, 0}};
  for (const Case& test : cases) {
    EXPECT_TRUE(
        test.wide
            ? Vexa_WriteCameraUserIDW(camera, 5, static_cast<const WCHAR*>(test.text), test.size)
            : Vexa_WriteCameraUserIDA(camera, 5, static_cast<const CHAR*>(test.text), test.size));
    Bytes record(256);
    record[0] = 5;
    record[4] = test.wide ? 0x80 : 0;
    record[5] = static_cast<BYTE>(test.length);
    std::copy_n(static_cast<const BYTE*>(test.text), test.length, record.begin() + 6);
    EXPECT_EQ(twin_->Log().back().data, record) << test.wide << " " << test.size;
  }
  EXPECT_EQ(Wire(*twin_).size(), std::size(cases)) << "one request each";
}

TEST_F(MemoryTest, UserIdTextsInBothForms) {
  HANDLE camera = OpenFirmware(0x0100);
  constexpr WCHAR kWide[] = {'a', 'b', 'c', 'd', 0};
  struct Case {
    bool stored_wide, wanted_wide;
    DWORD size;
    std::string text;  // as far as it is read
    DWORD error;
  };
  const Case cases[] = {
      {false, false, 5, "abcd", 0}, {false, false, 4, "abc", 0}, {false, false, 1, "", 0},
      {true, true, 10, "abcd", 0},  {true, true, 9, "abc", 0},   {true, true, 8, "abc", 0},
      {true, true, 1, "", 0},       {true, false, 5, "abcd", 0}, {true, false, 4, "", 122},
      {false, true, 12, "abcd", 0}, {false, true, 11, "", 122},  {false, true, 1, "", 122},
      {false, true, 0, "", 0},      {true, false, 0, "", 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(testing::Message() << test.stored_wide << test.wanted_wide << " " << test.size);
    ASSERT_TRUE(test.stored_wide ? Vexa_WriteCameraUserIDW(camera, 77, kWide, 10)
                                 : Vexa_WriteCameraUserIDA(camera, 77, "abcd", 5));
    Bytes buffer(16, 0xEE), expected(16, 0xEE);
    std::fill_n(expected.begin(), test.size, BYTE{0});
    for (std::size_t i = 0; i < test.text.size(); ++i) {
      expected[test.wanted_wide ? 2 * i : i] = static_cast<BYTE>(test.text[i]);
    }
    DWORD number = 0;
    void* const out = buffer.data();
    const BOOL read =
        test.wanted_wide
            ? Vexa_ReadCameraUserIDW(camera, &number, static_cast<WCHAR*>(out), test.size)
            : Vexa_ReadCameraUserIDA(camera, &number, static_cast<CHAR*>(out), test.size);
    EXPECT_EQ(ErrorOf(read), test.error);
    EXPECT_EQ(number, 77U);
    EXPECT_EQ(buffer, expected);
  }
  // A record from elsewhere, of a length that cannot be, and a camera that does not answer.
  Bytes record(256, 251);
  ASSERT_TRUE(Vexa_VendorRequest(camera, 0x40, 0xFA, 0x100, 0, 256, record.data(), nullptr));
  for (const bool answers : {true, false}) {
    std::array<WCHAR, 4> wide{1, 1, 1, 1};
    twin_->FailControl({.request = 0xFA}, 121, answers ? 0 : 1);
    EXPECT_EQ(Vexa_ReadCameraUserIDW(camera, nullptr, wide.data(), 8), answers);
    EXPECT_THAT(wide, ::testing::Each(0));
  }
}

}  // namespace
}  // namespace vexa::test
