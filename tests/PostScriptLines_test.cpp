// The block reader gives every byte that the line rules let through, whatever the block boundaries.

#include "FilterFrame/Source/PostScriptLines.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view kWished = "%%BeginFeature:";

// What a job comes apart into: the bytes passed on, token lines and wished ones with their places.
struct Parts {
  std::string bytes;
  std::vector<std::pair<std::size_t, std::string>> tokens;
  bool operator==(const Parts&) const = default;
};

// The rules by the letter, one byte at a time.
Parts ByTheLetter(const std::string& job) {
  Parts parts;
  std::string held;
  bool tail = false;  // the held bytes continue a line that was passed on in pieces
  for (char c : job) {
    held += c;
    if (c == '\r' || c == '\n') {
      const std::string line = held.substr(0, held.size() - 1);
      for (const PostScriptToken& token : kPostScriptTokens) {
        if (!tail && token.line == line) parts.tokens.emplace_back(parts.bytes.size(), held);
      }
      if (!tail && line.starts_with(kWished)) parts.tokens.emplace_back(parts.bytes.size(), held);
      parts.bytes += std::exchange(held, "");
      tail = false;
    } else if (held.size() == kLinePieceSize) {
      parts.bytes += std::exchange(held, "");
      tail = true;
    }
  }
  return parts;
}

// The same by the reader, the job arriving in chunks of these sizes.
Parts ByTheReader(const std::string& job, const std::vector<std::size_t>& chunks) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  std::thread writer([&] {
    std::size_t at = 0;
    for (std::size_t i = 0; at < job.size(); i++) {
      const std::size_t size = std::min(chunks[i % chunks.size()], job.size() - at);
      at += static_cast<std::size_t>(write(ends[1], job.data() + at, size));
    }
    close(ends[1]);
  });
  Parts parts;
  PostScriptLines lines(ends[0], {.prefix = kWished});
  for (PostScriptLines::Piece piece; lines.next(piece);) {
    EXPECT_FALSE(piece.bytes.empty());
    if (piece.token || piece.hasPrefix) parts.tokens.emplace_back(parts.bytes.size(), piece.bytes);
    parts.bytes += piece.bytes;
  }
  writer.join();
  close(ends[0]);
  return parts;
}

TEST(PostScriptLines, FindsWholeTokenLinesOnly) {
  const Parts parts = ByTheReader(
      "ep\nep \n ep\nEP\nepp\ne\r\nbp\r\n%%EndProlog\rendp\nshowpage\n\nuserdict/setpagedevice"
      "{pop}bind put\n%%EndSetup\n%%BeginProlog\n%%EndPageSetup\nep",
      {1000});
  std::vector<std::string> lines;
  for (const auto& token : parts.tokens) lines.push_back(token.second);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"ep\n", "bp\r", "%%EndProlog\r", "endp\n", "showpage\n",
                                      "userdict/setpagedevice{pop}bind put\n", "%%EndSetup\n",
                                      "%%BeginProlog\n", "%%EndPageSetup\n"}));
  EXPECT_EQ(ByTheReader(std::string("ep\0\nep\n", 7), {3}).tokens.size(), 1u);
}

TEST(PostScriptLines, PassesLongLinesOnInPieces) {
  for (std::size_t length : {8063u, 8064u, 8065u, 8066u, 10000u, 16130u, 200000u}) {
    const std::string line(length, 'x');
    for (const std::string& job :
         {line, line + "\n", line + "ep\nep\n", "\n" + line, line + "\rend"}) {
      EXPECT_EQ(ByTheReader(job, {4096}), ByTheLetter(job)) << length;
    }
  }
  EXPECT_EQ(ByTheReader(std::string(8065, 'x') + "ep\n", {100000}).tokens.size(), 0u);
}

TEST(PostScriptLines, RandomJobsArriveWholeInRandomChunks) {
  std::mt19937 random(20240131);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  const std::string ends[] = {"\n", "\r", "\r\n", "\n\n"};
  for (int round = 0; round < 300; round++) {
    std::string job;
    for (std::size_t count = below(200); count > 0; count--) {
      switch (below(8)) {
        case 0:
          job += std::string(below(9) == 0 ? below(20000) : below(80), 'e');
          break;
        case 1:
          job += static_cast<char>(below(256));
          break;
        case 2:
          job += std::string(below(2) == 0 ? kWished : "%%") + std::string(below(3), 'E');
          break;
        case 3:
          job += "12.5 40 moveto";
          break;
        default:
          job += kPostScriptTokens[below(std::size(kPostScriptTokens))].line;
          break;
      }
      if (below(6) != 0) job += ends[below(4)];
    }
    std::vector<std::size_t> chunks;
    for (std::size_t i = 0; i < 7; i++) {
      chunks.push_back(1 + (round % 3 == 0 ? below(3) : below(5000)));
    }
    ASSERT_EQ(ByTheReader(job, chunks), ByTheLetter(job)) << "round " << round;
  }
}

}  // namespace
