// Files through the line scanner into the parser.

#include "tools/inspect/JobReader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "FilterFrame/Source/PostScriptLines.h"

JobReport ReadJob(int fd, const PostScriptSink& sink) {
  const off_t start = lseek(fd, 0, SEEK_CUR);
  JobParser parser(sink);
  PostScriptLines lines(fd);
  off_t passed = 0;
  for (PostScriptLines::Piece piece; lines.next(piece);) {
    passed += static_cast<off_t>(piece.bytes.size());
    parser.feed(piece.bytes, piece.token);
  }
  // The reader leaves out what stands behind the last line end.
  char rest[kLinePieceSize];
  const ssize_t count = start < 0 ? 0 : pread(fd, rest, sizeof rest, start + passed);
  if (count > 0) parser.feed({rest, static_cast<std::size_t>(count)}, nullptr);
  JobReport report = parser.finish();
  report.readError = lines.readError();
  return report;
}

JobReport ReadJob(std::string_view bytes) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  if (file == nullptr) return JobParser().finish();
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::rewind(file.get());
  return ReadJob(fileno(file.get()));
}
