#include "library/poster_candidate.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace tavek {

PosterCandidate::PosterCandidate(FileText listed, std::string titleKey)
    : file(std::move(listed)), title(std::move(titleKey)), name(toLower(file.name())) {}

void orderCandidates(std::vector<PosterCandidate>& candidates) {
  std::ranges::stable_sort(candidates, [](const PosterCandidate& a, const PosterCandidate& b) {
    if (const auto order = a.file.folder().compare(b.file.folder()); order != 0) return order < 0;
    return lessNatural(a.name, b.name);
  });
  // Equal names of one folder now stand side by side.
  const auto same = [](const PosterCandidate& a, const PosterCandidate& b) {
    return a.name == b.name && a.file.folder() == b.file.folder();
  };
  candidates.erase(std::unique(candidates.begin(), candidates.end(), same), candidates.end());
}

}  // namespace tavek
