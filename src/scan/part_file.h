#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "scan/http.h"

namespace tavek {

/// A file on its way: hidden beside its goal until it is whole, and gone with its owner if it never was. A
/// kill leaves the hidden one.
class PartFile {
 public:
  explicit PartFile(std::filesystem::path goal);
  ~PartFile();
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  bool isOpen() const { return file_.isOpen(); }
  /// Begins again with an empty file.
  bool restart();
  bool add(std::string_view bytes);
  /// Its first bytes say so.
  bool is(FileKind kind) const;
  /// Gives it the goal's name, if that is free; nothing can be added after it.
  bool finish();

 private:
  std::filesystem::path goal_;
  std::filesystem::path part_;
  Descriptor file_;
  std::string head_;
};

}  // namespace tavek
