#include "platform/win32/registrySettings.h"

#include <gtest/gtest.h>

#include "platform/win32/win32.h"

namespace kelvora {
namespace {

constexpr const wchar_t* folder = L"Software\\kelvora\\test section";

class Registry : public ::testing::Test {
 protected:
  Registry() { RegDeleteTreeW(HKEY_CURRENT_USER, folder); }
  ~Registry() override { RegDeleteTreeW(HKEY_CURRENT_USER, folder); }
  std::string read(const std::string& key) const { return settings.read("test section", key, "fallback"); }
  void write(const std::string& key, const std::string& value) const { settings.write("test section", key, value); }

  RegistrySettings settings;
};

TEST_F(Registry, AMissingValueIsTheFallback) { EXPECT_EQ(read("name"), "fallback"); }

TEST_F(Registry, AValueIsReadAsItWasWritten) {
  write("name", "Ann");
  EXPECT_EQ(read("name"), "Ann");
  write("name", "");
  EXPECT_EQ(read("name"), "");
}

TEST_F(Registry, EveryByteButTheEndOfATextSurvives) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  write("name", all);
  EXPECT_EQ(read("name"), all);
}

TEST_F(Registry, LongValuesAreWhole) {
  const std::string text(100'000, 'x');
  write("name", text);
  EXPECT_EQ(read("name"), text);
}

TEST_F(Registry, TheValueStandsUnderItsSectionAndKey) {
  write("player name", "Ann");
  wchar_t text[8] = L"";
  DWORD size = sizeof text;
  ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, folder, L"player name", RRF_RT_REG_SZ, nullptr, text, &size), 0);
  EXPECT_STREQ(text, L"Ann");
}

TEST_F(Registry, AValueThatIsNoTextIsTheFallback) {
  const DWORD number = 7;
  RegSetKeyValueW(HKEY_CURRENT_USER, folder, L"name", REG_DWORD, &number, sizeof number);
  EXPECT_EQ(read("name"), "fallback");
}

}  // namespace
}  // namespace kelvora
