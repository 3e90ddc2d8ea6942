#include "input_text.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <string_view>
#include <system_error>

#include "messages.h"

namespace ibis::cli {
namespace {

constexpr std::string_view gzipFront = "\x1f\x8b";

// A text of more bytes is no text that a load takes.
constexpr std::size_t maxText = std::numeric_limits<std::int32_t>::max() - 1;

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A pipe or a device is for the load to refuse.
std::string readGzipFile(const std::string& source) {
  std::error_code fault;
  if (!std::filesystem::is_regular_file(source, fault)) return {};
  std::ifstream file(source, std::ios::binary);
  std::string front(gzipFront.size(), '\0');
  file.read(front.data(), static_cast<std::streamsize>(front.size()));
  if (!file || front != gzipFront) return {};
  return front + readAll(file);
}

// One run of zlib over all members of the data.
class Unpacking {
 public:
  Unpacking() { isReady_ = inflateInit2(&stream_, gzipOnly) == Z_OK; }
  ~Unpacking() { inflateEnd(&stream_); }
  Unpacking(const Unpacking&) = delete;
  Unpacking& operator=(const Unpacking&) = delete;

  // Why it cannot be unpacked; null once all of it is in the text.
  const char* run(std::string& packed, std::string& text) {
    if (!isReady_) return "no memory";
    stream_.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream_.avail_in = static_cast<uInt>(packed.size());
    for (int state = Z_OK; state != Z_STREAM_END || stream_.avail_in > 0;) {
      if (state == Z_STREAM_END && inflateReset(&stream_) != Z_OK) return "no memory";
      Bytef piece[pieceSize];
      stream_.next_out = piece;
      stream_.avail_out = pieceSize;
      state = inflate(&stream_, Z_NO_FLUSH);
      if (state != Z_OK && state != Z_STREAM_END) return reason(state);
      const std::size_t count = pieceSize - stream_.avail_out;
      if (text.size() + count > maxText) return "it holds too much";
      text.append(reinterpret_cast<const char*>(piece), count);
    }
    return nullptr;
  }

 private:
  static constexpr int gzipOnly = 15 + 16;  // the largest window, and no other format
  static constexpr uInt pieceSize = 1 << 15;

  static const char* reason(int state) {
    return state == Z_BUF_ERROR ? "it ends too early" : "it is damaged";
  }

  z_stream stream_{};
  bool isReady_ = false;
};

InputText unpacked(std::string packed) {
  auto text = std::make_shared<std::string>();
  const char* reason = "it holds too much";
  if (packed.size() <= maxText) reason = Unpacking().run(packed, *text);
  if (reason == nullptr) return {.text = std::move(text), .fault = {}};
  return {.text = {}, .fault = tell(Severity::error, message::cannotUnpack, reason)};
}

}  // namespace

InputText readInputText(const std::string& source) {
  const bool isStandardInput = source == standardInput;
  std::string bytes = isStandardInput ? readAll(std::cin) : readGzipFile(source);
  if (bytes.starts_with(gzipFront)) return unpacked(std::move(bytes));
  if (!isStandardInput) return {};
  return {.text = std::make_shared<const std::string>(std::move(bytes)), .fault = {}};
}

}  // namespace ibis::cli
