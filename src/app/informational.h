#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/avutil.h>
}

/// The options that print something and end the program, before any screen is opened.
namespace tavek {

enum class Answer { None, Help, Git, Extensions, Codecs, Drivers };

/// Prints the answer on the standard streams; returns the exit status.
int giveAnswer(Answer answer);

/// Takes the last renames of a room back, which is named as it is below the library or by its path, and tells
/// what became of each. Returns the exit status: 1 for a room in which nothing was ever renamed.
int undoRenamesOf(const std::string& room);

/// The decoders of one media type: how many, and the names of the first 20.
struct DecoderGroup {
  int count = 0;
  std::vector<std::string> samples;
};
using DecoderSummary = std::map<AVMediaType, DecoderGroup>;

void printHelp(std::ostream& out);
void printExtensions(std::ostream& out, const std::set<std::string>& extensions);
void printDecoders(std::ostream& out, const DecoderSummary& summary);
DecoderSummary summarizeDecoders();

}  // namespace tavek
