#include "model/numbers/numbers.h"

#include <locale.h>
#include <stdlib.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// What the C library's strtod reads in the "C" locale, whatever locale is set.
NumberPrefix readByLibrary(const std::string& text) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  char* end = nullptr;
  const double value = strtod_l(text.c_str(), &end, plain);
  return {value, static_cast<std::size_t>(end - text.c_str())};
}

/// Equal bit for bit, but for the sign and payload of a not-a-number.
bool same(NumberPrefix a, NumberPrefix b) {
  const bool sameValue = std::isnan(a.value) ? std::isnan(b.value)
                                             : std::bit_cast<std::uint64_t>(a.value) ==
                                                   std::bit_cast<std::uint64_t>(b.value);
  return sameValue && a.length == b.length;
}

::testing::AssertionResult agreesWithLibrary(const std::string& text) {
  const NumberPrefix read = readNumber(text);
  const NumberPrefix expected = readByLibrary(text);
  if (same(read, expected)) return ::testing::AssertionSuccess();
  char values[200];
  snprintf(values, sizeof values, "reads %a (%zu), not %a (%zu): ", read.value, read.length,
           expected.value, expected.length);
  return ::testing::AssertionFailure() << values << text.substr(0, 2000);
}

std::string zeros(std::size_t count) { return std::string(count, '0'); }

/// Texts around every turn of the syntax and of the range.
Texts hardTexts() {
  Texts texts = {
      // No number, or one that ends early.
      "", " ", "\t", "+", "-", "+-1", "-+1", "--1", "++1", "+ 1", "- 1", ".", "..", "-.", "+.",
      ".e1", ".e", "e", "e1", "E5", "-e1", "x", "0", "00", "-0", "+0", "-0.0", "0.", ".0", "-.0",
      "0..0", "1..2", "1.2.3", "1,5", "1,5.5", "1 2", "1_000", "1'000", "$1", "1$", "abc", "NA",
      "na", "N", "n", "NC", "1e", "1e+", "1e-", "1e +5", "1e++5", "1e+-5", "1E", "1ee5", "1e5e5",
      "1e5.5", "1d5", "1D5", "1.e", "1.e5", ".1e5", "1.5e+05", "1.5E-05", "1e05",
      "1e00000000000000000000005", "1e-00000000000000000000005", "12345", "-12345", "+12345",
      "1.5V", "5pF", "10mA", "4Meg", "4MEG", "4K", "1f", "1e3k", "1e-3m", "12.5n", "0b101", "0o17",
      "017", "1.#INF", "1.#QNAN", "1f5", "1L",
      // White space ahead.
      " 1", "\t1", "\n1", "\v1", "\f1", "\r1", " \t\n\v\f\r-1.5 ",
      "\xA0"
      "1",
      "\x1F"
      "1",
      "\b1",
      "\xC2\xA0"
      "1",
      "\x85"
      "1",
      " ", " +", " .", " x", " 0x", " inf", " nan",
      // Infinities and not-a-numbers.
      "inf", "INF", "Inf", "iNf", "-inf", "+inf", "infi", "infin", "infini", "infinit", "infinity",
      "INFINITY", "-InFiNiTy", "infinityx", "infinit y", "in", "i", "-i", "inf5", "infp", "info",
      "nan", "NAN", "NaN", "-nan", "+nan", "nanx", "nan5", "na", "nan(", "nan()", "nan(1)",
      "nan(abc)", "nan(A_9z)", "nan(0x7)", "nan(1", "nan(1-2)", "nan( )", "nan(1) ", "nan(a)(b)",
      "nan)", "nan (1)", "-nan(12)x", "nano", "NAN(", "nan(_)", "nan(\xE9)",
      "nan(99999999999999999999999999)", "nann",
      // Hexadecimal.
      "0x", "0X", "0xg", "0x ", "0x.", "0x.p1", "0xp1", "0x.g", "-0x", "0x1", "0X1", "0x10", "0xff",
      "0xFF", "-0xAb", "0x1.", "0x.8", "0x1.8", "0x1.8p", "0x1.8p+", "0x1.8p-", "0x1.8p1",
      "0x1.8P+1", "0x1.8p-1", "0x1p1.5", "0x1pz", "0x1p+ 1", "0x1p 1", "0x1e5", "0x1f", "0x1.fk",
      "0x0", "-0x0", "0x0p5", "0x0p99999999999999999999", "0x0.0", "0x.0", "0x0.0p-5", "0x00001",
      "0x1.8.8", "00x1", "0 x1", "x1", "0x-1", "0x+1", "0x0x1", "0x1p0001", "0x1p1023", "0x1p1024",
      "-0x1p1024", "0x1.fffffffffffffp1023", "0x1.fffffffffffff7p1023", "0x1.fffffffffffff8p1023",
      "0x1p-1022", "0x1p-1023", "0x1p-1074", "0x1p-1075", "0x1.000001p-1075", "0x1.8p-1074",
      "0x1p-1076", "0x0.8p-1074", "0x0.fffffffffffff8p-1022", "0x0.fffffffffffff7p-1022",
      "-0x1p-1080", "0x1p99999999999999999999", "0x1p-99999999999999999999", "0x1.00000000000008p0",
      "0x1.000000000000080p0", "0x1.0000000000000800000000001p0", "0x1.00000000000018p0",
      "0x1.0000000000000fp0", "0x3.fffffffffffffep0", "0x123456789abcdef0123456789",
      "0xfffffffffffffbff", "0xfffffffffffffc00", "0xfffffffffffffc01", "0x7ffffffffffffdff",
      "0x.00000000000000000001p80", "0x1p2147483647", "0x1p2147483648", "0x1p-2147483648",
      "0x1p4294967296", "0x1p18446744073709551616",
      // Rounding and the ends of the range.
      "0.1", "0.2", "0.3", "1e22", "1e23", "9007199254740991", "9007199254740992",
      "9007199254740993", "9007199254740993.00000000000000000000000001", "9007199254740995",
      "1.7976931348623157e308", "1.7976931348623158e308", "1.7976931348623159e308",
      "1.797693134862315807e308", "1.797693134862315808e308", "1e308", "1e309", "-1e309", "2e308",
      "1e999999999", "-1e999999999", "1e99999999999999999999", "1e-99999999999999999999",
      "-1e-99999999999999999999", "0e99999999999999999999", "-0e-99999999999999999999", "0.0e5000",
      "2.2250738585072014e-308", "2.2250738585072011e-308", "2.225073858507201e-308",
      "2.2250738585072012e-308", "4.9406564584124654e-324", "4.9e-324", "5e-324", "3e-324",
      "2.4703282292062328e-324", "2.4703282292062327e-324", "2.47e-324", "2e-324", "1e-323",
      "1.5e-323", "1e-324", "1e-400", "-1e-400", "1e2147483647", "1e2147483648", "1e-2147483648",
      "1e-2147483649", "1e4294967297", "1e9223372036854775808", "1e-9223372036854775809",
      "1e18446744073709551617", "8.5e-1e", "1e400k",
      "1.00000000000000011102230246251565404236316680908203125",
      "1.00000000000000011102230246251565404236316680908203124",
      "1.00000000000000011102230246251565404236316680908203126",
      "1.000000000000000333066907387546962127089500427246093750",
      "7."
      "41098468761869816264853189302332058547589703921487146638378523751013260905313127797949754542"
      "45"
      "39885696948470431685765963899850655339e-324",
      "6.9294956446009195e15", "3.2378839133029012895883524125015321748630094e-319",
      "179769313486231580793728971405301e276", "5708990770823839524233143877797980545530986496e0"};
  texts.push_back("1" + zeros(400) + "e-400");
  texts.push_back("0." + zeros(400) + "1e401");
  texts.push_back("1" + zeros(400));
  texts.push_back("0." + zeros(400) + "1");
  texts.push_back(zeros(2000) + "1.5");
  texts.push_back("0." + zeros(5000) + "e5");
  texts.push_back("0x" + zeros(400) + "1." + zeros(400) + "1p1");
  texts.push_back("0x0." + zeros(300) + "1p1204");
  texts.push_back("0x1" + zeros(300) + "p-1200");
  texts.push_back("9007199254740992." + zeros(900) + "1");
  texts.push_back("9007199254740993." + zeros(900));
  texts.push_back("9007199254740993." + zeros(900) + "1");
  texts.push_back(std::string(1000, '9') + "e-1000");
  texts.push_back("0." + std::string(1000, '9'));
  texts.push_back("1e" + zeros(3000) + "7");
  texts.push_back("1e-" + zeros(3000) + "7");
  texts.push_back(std::string(500, ' ') + "7");
  texts.push_back("nan(" + std::string(500, '7') + ")");
  return texts;
}

std::string hexadecimal(double value) {
  char text[64];
  snprintf(text, sizeof text, "%a", value);
  return text;
}

/// A text that is mostly near a number, by one of several ways of making it.
std::string randomText(std::mt19937_64& random) {
  const double value = std::bit_cast<double>(random());
  char text[64];
  switch (random() % 6) {
    case 0:
      snprintf(text, sizeof text, "%.*g", static_cast<int>(random() % 20), value);
      return text;
    case 1:
      return hexadecimal(value);
    case 2:
      snprintf(text, sizeof text, "%.*fpF", static_cast<int>(random() % 12),
               std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 80)));
      return text;
    case 3: {
      std::string digits;
      for (auto length = random() % 30; length > 0; --length)
        digits += "0123456789.e-"[random() % 13];
      return digits;
    }
    case 4: {
      std::string any;
      for (auto length = random() % 12; length > 0; --length) {
        any += " +-.0123456789aAbBcefinptxXyNI()_Pk"[random() % 36];
      }
      return any;
    }
    default: {
      std::string digits = random() % 2 == 0 ? "-" : "";
      for (auto length = 1 + random() % 25; length > 0; --length) {
        digits += static_cast<char>('0' + random() % 10);
      }
      digits.insert(1 + random() % digits.size(), ".");
      return digits + "e" + std::to_string(static_cast<int>(random() % 700) - 350);
    }
  }
}

TEST(ReadNumber, AgreesWithTheLibraryOnHardTexts) {
  const Texts texts = hardTexts();
  EXPECT_GT(texts.size(), 300U);
  for (const std::string& text : texts) {
    EXPECT_TRUE(agreesWithLibrary(text));
    EXPECT_TRUE(agreesWithLibrary("-" + text));
    EXPECT_TRUE(agreesWithLibrary(" \t+" + text + "n"));
  }
}

TEST(ReadNumber, AgreesWithTheLibraryOnManyTexts) {
  std::mt19937_64 random(4'200'617);
  for (int i = 0; i < 120'000; ++i) ASSERT_TRUE(agreesWithLibrary(randomText(random)));
}

// A text half way between two neighbours, and one a little to each side of it.
TEST(ReadNumber, AgreesWithTheLibraryBetweenNeighbours) {
  std::mt19937_64 random(53);
  for (int i = 0; i < 1'000; ++i) {
    const double low = std::abs(std::bit_cast<double>(random()));
    if (!(low < 1e300) || low < 1e-290) continue;
    const double high = std::nextafter(low, std::numeric_limits<double>::infinity());
    char text[1200];
    snprintf(text, sizeof text, "%.800Lg", (static_cast<long double>(low) + high) / 2);
    const std::string middle = text;
    const std::size_t digits = std::min(middle.find('e'), middle.size());
    ASSERT_TRUE(agreesWithLibrary(middle));
    if (middle.find('.') == std::string::npos) continue;
    ASSERT_TRUE(agreesWithLibrary(std::string(middle).insert(digits, "0000001")));
    ASSERT_TRUE(agreesWithLibrary(std::string(middle).replace(digits - 1, 1, "0")));
  }
}

TEST(ReadNumber, GivesTheValueAndTheLengthOfTheLeadingNumber) {
  const struct {
    std::string_view text;
    double value;
    std::size_t length;
  } rows[] = {
      {"1.5V", 1.5, 3},       {"-2e3k", -2000.0, 4},
      {"0x1.8p1n", 3.0, 7},   {"0x", 0.0, 1},
      {"  .5", 0.5, 4},       {"1e", 1.0, 1},
      {"pF", 0.0, 0},         {"", 0.0, 0},
      {"0x.p1", 0.0, 1},      {" +", 0.0, 0},
      {"4.", 4.0, 2},         {"1,5", 1.0, 1},
      {"-inf", -HUGE_VAL, 4}, {"infinite", HUGE_VAL, 3},
      {"1e999", HUGE_VAL, 5}, {"1e-999", 0.0, 6},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(same(readNumber(row.text), {row.value, row.length})) << row.text;
  }
  EXPECT_TRUE(std::signbit(readNumber("-0").value));
  EXPECT_TRUE(std::isnan(readNumber("nan(7)").value));
  EXPECT_EQ(readNumber("nan(7)").length, 6U);
}

TEST(ReadNumber, StopsAtTheEndOfTheTextAndAtANul) {
  EXPECT_TRUE(same(readNumber(std::string_view("12345").substr(0, 3)), {123.0, 3}));
  EXPECT_TRUE(same(readNumber(std::string_view("1e5").substr(0, 2)), {1.0, 1}));
  EXPECT_TRUE(same(readNumber(std::string_view("0x1p5").substr(0, 3)), {1.0, 3}));
  EXPECT_TRUE(same(readNumber(std::string_view("0x1").substr(0, 2)), {0.0, 1}));
  EXPECT_TRUE(same(readNumber(std::string_view("infinity").substr(0, 7)), {HUGE_VAL, 3}));
  EXPECT_TRUE(same(readNumber(std::string_view("-5").substr(0, 1)), {0.0, 0}));
  EXPECT_TRUE(same(readNumber(std::string_view()), {0.0, 0}));
  EXPECT_TRUE(same(readNumber(std::string_view("1\0002", 3)), {1.0, 1}));
  EXPECT_TRUE(same(readNumber(std::string_view("\0002", 2)), {0.0, 0}));
}

/// Sets a locale whose decimal point is a comma, made for the occasion, until it goes away.
class CommaLocale {
 public:
  CommaLocale() {
    std::string characters = "<code_set_name> PLAIN\n<mb_cur_max> 1\n<escape_char> /\nCHARMAP\n";
    for (int code = 0; code < 128; ++code) {
      char line[32];
      snprintf(line, sizeof line, "<U%04X> /x%02x\n", static_cast<unsigned>(code),
               static_cast<unsigned>(code));
      characters += line;
    }
    writeWholeFile(folder_.file("characters"), characters + "END CHARMAP\n");
    writeWholeFile(folder_.file("source"),
                   "escape_char /\nLC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
                   "grouping 3;3\nEND LC_NUMERIC\n");
    const std::string command =
        "cd '" + folder_.path() + "' && localedef -c -f ./characters -i source ./comma 2>messages";
    // It warns of the categories that are not there, which makes for a status other than 0.
    [[maybe_unused]] const int status = std::system(command.c_str());
    setenv("LOCPATH", folder_.path().c_str(), 1);
    isSet_ = setlocale(LC_NUMERIC, "comma") != nullptr;
  }
  ~CommaLocale() {
    setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool isSet() const { return isSet_; }

 private:
  TemporaryFolder folder_;
  bool isSet_ = false;
};

TEST(ReadNumber, KeepsToTheFullStopInALocaleWithADecimalComma) {
  const CommaLocale locale;
  ASSERT_TRUE(locale.isSet()) << "localedef made no locale";
  ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);
  EXPECT_TRUE(same(readNumber("1.5"), {1.5, 3}));
  EXPECT_TRUE(same(readNumber("1,5"), {1.0, 1}));
  EXPECT_EQ(parseNumber("0.5m", 9.0), 0.5 * 1e-3);
  for (const std::string& text : hardTexts()) EXPECT_TRUE(agreesWithLibrary(text));
  std::mt19937_64 random(77);
  for (int i = 0; i < 10'000; ++i) ASSERT_TRUE(agreesWithLibrary(randomText(random)));
}

TEST(ParseNumber, MultipliesByTheFactorOfTheNextCharacter) {
  const std::pair<const char*, double> rows[] = {
      {"3T", 3 * 1e12},      {"3G", 3 * 1e9},      {"3M", 3 * 1e6},    {"3k", 3 * 1e3},
      {"3m", 3 * 1e-3},      {"3u", 3 * 1e-6},     {"3n", 3 * 1e-9},   {"3p", 3 * 1e-12},
      {"3f", 3 * 1e-15},     {"3", 3.0},           {"3t", 3.0},        {"3g", 3.0},
      {"3K", 3.0},           {"3U", 3.0},          {"3N", 3.0},        {"3P", 3.0},
      {"3F", 3.0},           {"3a", 3.0},          {"3V", 3.0},        {"3 m", 3.0},
      {"3.7p", 3.7 * 1e-12}, {"0.1m", 0.1 * 1e-3}, {"-7n", -7 * 1e-9}, {"3mk", 3 * 1e-3},
  };
  for (const auto& [text, value] : rows) EXPECT_EQ(parseNumber(text, 9.0), value) << text;
}

TEST(ParseNumber, ReadsTheUsualFormsOfAFile) {
  const std::pair<const char*, double> rows[] = {
      {"5pF", 5e-12},     {"10mA", 0.01}, {"1.5V", 1.5},   {"4Meg", 4e6},
      {"4MEG", 4e6},      {"4K", 4.0},    {"1e-3m", 1e-6}, {"1e3k", 1e6},
      {"0x10k", 16000.0}, {"0x1f", 31.0}, {"1e", 1.0},     {"1p5", 1e-12},
  };
  for (const auto& [text, value] : rows) EXPECT_EQ(parseNumber(text, 9.0), value) << text;
}

TEST(ParseNumber, GivesTheFallbackForNotAvailableInCapitalsAlone) {
  EXPECT_EQ(parseNumber("NA", 0.8), 0.8);
  EXPECT_EQ(parseNumber("NA", -1e300), -1e300);
  for (const char* text : {"na", "Na", "nA", "NA ", " NA", "NAm", "N", "NC"}) {
    EXPECT_EQ(parseNumber(text, 0.8), 0.0) << text;
  }
}

TEST(ParseNumber, GivesZeroForATextWithoutANumber) {
  for (const char* text : {"", "abc", "V", "pF", "k", "-", "+", ".", "e5", "=1"}) {
    EXPECT_EQ(parseNumber(text, 0.8), 0.0) << text;
  }
}

TEST(ParseNumber, ScalesInfinitiesAndKeepsTheSignOfZero) {
  EXPECT_EQ(parseNumber("infk", 0.0), HUGE_VAL);
  EXPECT_EQ(parseNumber("-infinityp", 0.0), -HUGE_VAL);
  EXPECT_EQ(parseNumber("1e308k", 0.0), HUGE_VAL);
  EXPECT_TRUE(std::isnan(parseNumber("nank", 0.0)));
  EXPECT_TRUE(std::signbit(parseNumber("-0p", 0.0)));
}

TEST(ParseInteger, AgreesWithTheLibraryOnHardTexts) {
  for (const char* text : {"",
                           "0",
                           "7",
                           "-7",
                           "+7",
                           "007",
                           " 7",
                           "\t\n\v\f\r7",
                           "+-7",
                           "--7",
                           "- 7",
                           "x7",
                           "7x",
                           "7.9",
                           "1e3",
                           "0x10",
                           "-0",
                           "  ",
                           "12 34",
                           "2147483647",
                           "2147483648",
                           "-2147483648",
                           "-2147483649",
                           "4294967295",
                           "4294967296",
                           "4294967297",
                           "-4294967297",
                           "9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775808",
                           "-9223372036854775809",
                           "18446744073709551616",
                           "18446744073709551621",
                           "99999999999999999999999999",
                           "-99999999999999999999999999",
                           "00000000000000000000000000000000000007",
                           "\xA0"
                           "7",
                           "7\xA0"}) {
    EXPECT_EQ(parseInteger(text), std::atoi(text)) << text;
  }
}

TEST(ParseInteger, WrapsAndSaturatesAsTheLibraryDoes) {
  EXPECT_EQ(parseInteger("4294967297"), 1);
  EXPECT_EQ(parseInteger("2147483648"), -2147483647 - 1);
  EXPECT_EQ(parseInteger("99999999999999999999"), -1);
  EXPECT_EQ(parseInteger("-99999999999999999999"), 0);
}

TEST(ParseInteger, AgreesWithTheLibraryOnManyTexts) {
  std::mt19937_64 random(31);
  for (int i = 0; i < 50'000; ++i) {
    std::string text;
    for (auto length = random() % 24; length > 0; --length)
      text += "0123456789012345 +-x"[random() % 20];
    ASSERT_EQ(parseInteger(text), std::atoi(text.c_str())) << text;
  }
}

TEST(ParseInteger, StopsAtTheEndOfTheTextAndAtANul) {
  EXPECT_EQ(parseInteger(std::string_view("12345").substr(0, 3)), 123);
  EXPECT_EQ(parseInteger(std::string_view("-5").substr(0, 1)), 0);
  EXPECT_EQ(parseInteger(std::string_view("1\0002", 3)), 1);
}

}  // namespace
}  // namespace ibis::testing
