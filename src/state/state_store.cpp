#include "state/state_store.h"

#include <system_error>
#include <utility>

namespace tavek {
namespace {

bool saveAll(StateFile& file, PlaybackFiles& files) {
  std::error_code ignored;
  std::filesystem::create_directories(file.lockFile().parent_path(), ignored);
  const FileLock lock(file.lockFile());
  if (!lock.held()) return false;
  const bool playbackSaved = files.save();
  return file.save() && playbackSaved;
}

}  // namespace

StateStore::StateStore(std::filesystem::path file)
    : file_(std::make_shared<StateFile>(std::move(file))),
      files_(std::make_shared<PlaybackFiles>()),
      saves_([shared = file_, files = files_] { return saveAll(*shared, *files); }),
      memory_(file_, saves_),
      playback_(*files_, saves_),
      settings_(memory_),
      users_(memory_, playback_, notes_) {
  if (file_->load()) saves_.request(Save::AtRest);
}

}  // namespace tavek
