// Camera memory and user ID.

#include <array>
#include <functional>
#include <numeric>

#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

using simulator::ForProduct;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::StartsWith;
using Bytes = std::vector<BYTE>;
using Lines = std::vector<std::string>;

class MemoryTest : public CameraTest {
 protected:
  HANDLE OpenFirmware(std::uint16_t firmware, std::uint16_t product_id = 0x0510) {
    simulator::CameraConfig config = ForProduct(product_id);
    config.firmware = firmware;
    twin_ = Plug(config);
    HANDLE camera = Open();
    twin_->ClearLog();
    return camera;
  }

  std::shared_ptr<simulator::TwinCamera> twin_;
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
    DWORD total = 99;
    EXPECT_TRUE(Vexa_WriteRAM(camera, test.first, test.last, data.data(), &total));
    EXPECT_EQ(total, test.total);
    const Lines written = Wire(*twin_);
    Bytes back(test.total + 1, 0xEE);
    EXPECT_TRUE(Vexa_ReadRAM(camera, test.first, test.last, back.data(), &total));
    EXPECT_EQ(total, test.total);
    EXPECT_TRUE(std::equal(data.begin(), data.begin() + test.total, back.begin()));
    EXPECT_EQ(back.back(), 0xEE) << "nothing behind the range";
    Lines reads;
    ASSERT_EQ(written.size(), test.requests.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
      reads.push_back("C0 " + test.requests[i]);
      EXPECT_THAT(written[i], StartsWith("40 " + test.requests[i].substr(0, 13) + "["));
    }
    EXPECT_EQ(Wire(*twin_), reads);
  }
}

TEST_F(MemoryTest, ChunksThatFailOrStopShort) {
  HANDLE camera = OpenFirmware(0x0100);
  Bytes data(0x2000, 7);
  DWORD total = 99;
  twin_->LimitControl({.request = 0xA0}, 100, 1);
  EXPECT_TRUE(Vexa_ReadRAM(camera, 0, 0x10FF, data.data(), &total));
  EXPECT_THAT(Wire(*twin_), ElementsAre("C0 A0 0000 0000 +4096", "C0 A0 0064 0000 +4096",
                                        "C0 A0 1064 0000 +156"));
  EXPECT_EQ(total, 0x1100U);
  for (const bool silent : {true, false}) {
    total = 99;
    if (silent) {
      twin_->LimitControl({.request = 0xA0, .value = std::uint16_t{0x1000}}, 0, 1);
    } else {
      twin_->FailControl({.request = 0xA0, .value = std::uint16_t{0x1000}}, 121, 1);
    }
    EXPECT_FALSE(Vexa_WriteRAM(camera, 0, 0x1FFF, data.data(), &total));
    EXPECT_EQ(GetLastError(), silent ? 31U : 121U);
    EXPECT_EQ(total, 99U);
    EXPECT_EQ(Wire(*twin_).size(), 2U);
  }
  twin_->LimitControl({.request = 0xFA}, 0, 2);
  EXPECT_FALSE(Vexa_ReadUserMemory(camera, data.data(), 0, 4));
  EXPECT_FALSE(Vexa_WriteCameraUserIDA(camera, 1, "x", 2));
  EXPECT_EQ(GetLastError(), 31U);
}

TEST_F(MemoryTest, TheUserAreaFollowsTheFirmwareAndStays) {
  struct Case {
    std::uint16_t firmware, product_id;
    Lines requests;
  };
  const Case cases[] = {
      {0x0100, 0x0510, {"C0 FA 05E8 0000 +24", "C0 FA 0200 0000 +1024", "C0 FA 0100 0000 +256"}},
      {0x00FF, 0x0510, {"C0 F9 73E8 0151 +24", "C0 F9 7000 0151 +1024", "C0 F9 6F00 0151 +256"}},
      {0x0085, 0x0705, {"C0 F9 73E8 0151 +24", "C0 F9 7000 0151 +1024", "C0 F9 6F00 0151 +256"}},
  };
  for (const Case& test : cases) {
    HANDLE camera = OpenFirmware(test.firmware, test.product_id);
    Bytes data(1024);
    std::iota(data.begin(), data.end(), BYTE{3});
    EXPECT_TRUE(Vexa_WriteUserMemory(camera, data.data(), 0, 1024));
    EXPECT_TRUE(Vexa_WriteCameraUserIDA(camera, 0xA1B2C3D4, "Ofen 3", 7));
    for (const bool unplugged : {false, true}) {
      Close(camera);
      if (unplugged) {
        twin_->Unplug();
        twin_->Replug();
      }
      camera = Open();
      Wire(*twin_);
      Bytes tail(24), back(1024);
      DWORD number = 0;
      std::array<CHAR, 16> text{};
      EXPECT_TRUE(Vexa_ReadUserMemory(camera, tail.data(), 1000, 24));
      EXPECT_TRUE(Vexa_ReadUserMemory(camera, back.data(), 0, 1024));
      EXPECT_TRUE(Vexa_ReadCameraUserIDA(camera, &number, text.data(), 16));
      EXPECT_EQ(back, data);
      EXPECT_EQ(tail, Bytes(data.end() - 24, data.end()));
      EXPECT_EQ(number, 0xA1B2C3D4U);
      EXPECT_STREQ(text.data(), "Ofen 3");
      EXPECT_EQ(Wire(*twin_), test.requests);
    }
    EXPECT_TRUE(Vexa_ReadUserMemory(camera, nullptr, 1024, 0));
    const std::vector<std::pair<const char*, std::function<BOOL()>>> refused = {
        {"beyond the end", [&] { return Vexa_ReadUserMemory(camera, data.data(), 1000, 25); }},
        {"far beyond", [&] { return Vexa_WriteUserMemory(camera, data.data(), 65535, 65535); }},
        {"null memory", [&] { return Vexa_ReadUserMemory(camera, nullptr, 0, 1); }},
        {"null RAM", [&] { return Vexa_WriteRAM(camera, 0, 0, nullptr, nullptr); }},
        {"null text", [&] { return Vexa_ReadCameraUserIDW(camera, nullptr, nullptr, 2); }},
        {"handle", [&] { return Vexa_ReadRAM(INVALID_HANDLE_VALUE, 0, 0, data.data(), nullptr); }},
    };
    for (const auto& [name, call] : refused) {
      SetLastError(0);
      EXPECT_FALSE(call()) << name;
      EXPECT_EQ(GetLastError(), 87U) << name;
    }
    EXPECT_TRUE(Wire(*twin_).empty());
    Close(camera);
    bus_.Remove(twin_);
  }
}

TEST_F(MemoryTest, UserIdRecords) {
  HANDLE camera = OpenFirmware(0x0100);
  const std::string long_text(300, 'n');
  const std::u16string wide_text(200, u'w');
  std::u16string buffer = u"ab";
  struct Case {
    const char* name;
    std::function<BOOL()> write;
    std::size_t length;
    BYTE flags;
    BYTE last;  // of the text
  };
  const auto narrow = [&](const CHAR* text, DWORD size) {
    return [=] { return Vexa_WriteCameraUserIDA(camera, 5, text, size); };
  };
  const auto wide = [&](const char16_t* text, DWORD size) {
    return [=] {
      return Vexa_WriteCameraUserIDW(camera, 5, reinterpret_cast<const WCHAR*>(text), size);
    };
  };
  const Case cases[] = {
      {"up to the zero", narrow("abc\0def", 8), 4, 0, 0},
      {"no zero in the buffer", narrow("abcdef", 3), 3, 0, 'c'},
      {"no text", narrow(nullptr, 9), 0, 0, 0},
      {"no buffer", narrow("abc", 0), 0, 0, 0},
      {"250 bytes", narrow(long_text.data(), 250), 250, 0, 'n'},
      {"300 bytes", narrow(long_text.data(), 300), 249, 0, 'n'},
      {"wide up to the zero", wide(u"\u0100\u0001", 64), 6, 0x80, 0},
      {"wide, no zero", wide(buffer.data(), 4), 4, 0x80, 0},
      {"wide, half a character", wide(buffer.data(), 3), 2, 0x80, 0},
      {"wide, 125 characters", wide(wide_text.data(), 250), 250, 0x80, 0},
      {"wide, 126 characters", wide(wide_text.data(), 252), 248, 0x80, 0},
  };
  for (const Case& test : cases) {
    EXPECT_TRUE(test.write()) << test.name;
    const auto log = twin_->Log();
    ASSERT_EQ(log.size(), 1U) << "one request";
    twin_->ClearLog();
    const Bytes& record = log[0].data;
    ASSERT_EQ(record.size(), 256U);
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 6),
              (Bytes{5, 0, 0, 0, test.flags, static_cast<BYTE>(test.length)}))
        << test.name;
    EXPECT_EQ(record[5 + test.length], test.length == 0 ? 0 : test.last) << test.name;
    EXPECT_THAT(Bytes(record.begin() + 6 + static_cast<std::ptrdiff_t>(test.length), record.end()),
                Each(0))
        << test.name;
  }
}

TEST_F(MemoryTest, UserIdTextsInBothForms) {
  HANDLE camera = OpenFirmware(0x0100);
  constexpr const char* kNarrow = "abcd";
  constexpr const char16_t* kWide = u"abcd";
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
    ASSERT_TRUE(test.stored_wide
                    ? Vexa_WriteCameraUserIDW(camera, 77, reinterpret_cast<const WCHAR*>(kWide), 10)
                    : Vexa_WriteCameraUserIDA(camera, 77, kNarrow, 5));
    std::array<WCHAR, 8> wide{};
    std::array<CHAR, 16> narrow{};
    wide.fill(0xEEEE);
    narrow.fill(static_cast<CHAR>(0xEE));
    DWORD number = 0;
    SetLastError(0);
    const BOOL read = test.wanted_wide
                          ? Vexa_ReadCameraUserIDW(camera, &number, wide.data(), test.size)
                          : Vexa_ReadCameraUserIDA(camera, &number, narrow.data(), test.size);
    EXPECT_EQ(read, test.error == 0 ? TRUE : FALSE);
    EXPECT_EQ(GetLastError(), test.error);
    EXPECT_EQ(number, 77U);
    for (std::size_t i = 0; i < 16; ++i) {
      const std::size_t unit = test.wanted_wide ? i / 2 : i;
      const BYTE expected = unit < test.text.size() && (!test.wanted_wide || i % 2 == 0)
                                ? static_cast<BYTE>(test.text[unit])
                                : BYTE{0};
      const auto found = test.wanted_wide ? static_cast<BYTE>(wide[unit] >> (8 * (i % 2)) & 0xFF)
                                          : static_cast<BYTE>(narrow[unit]);
      EXPECT_EQ(found, i < test.size ? expected : 0xEE) << "byte " << i;
    }
  }
  // Records from elsewhere: no text, or a length that cannot be.
  for (const BYTE length : {BYTE{0}, BYTE{251}}) {
    Bytes record(256, 'x');
    record[4] = 0;
    record[5] = length;
    ASSERT_TRUE(Vexa_VendorRequest(camera, 0x40, 0xFA, 0x100, 0, 256, record.data(), nullptr));
    std::array<WCHAR, 4> wide{1, 1, 1, 1};
    EXPECT_TRUE(Vexa_ReadCameraUserIDW(camera, nullptr, wide.data(), 8));
    EXPECT_THAT(wide, Each(0));
  }
  std::array<CHAR, 4> narrow{1, 1, 1, 1};
  twin_->FailControl({.request = 0xFA}, 121, 1);
  EXPECT_FALSE(Vexa_ReadCameraUserIDA(camera, nullptr, narrow.data(), 4));
  EXPECT_THAT(narrow, Each(0)) << "cleared before the camera is asked";
}

}  // namespace
}  // namespace vexa::test
