#include "state/state_store.h"

#include <system_error>
#include <utility>

#include "state/device_files.h"

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

StateStore::StateStore(std::filesystem::path file, const std::filesystem::path& home)
    : file_(std::make_shared<StateFile>(std::move(file))),
      files_(std::make_shared<PlaybackFiles>()),
      deviceFiles_(std::make_shared<DeviceFiles>(home)),
      saves_([shared = file_, files = files_, devices = deviceFiles_] {
        // First, since they may be what the library's disk waits for.
        const bool devicesSaved = devices->save();
        return saveAll(*shared, *files) && devicesSaved;
      }),
      memory_(file_, saves_),
      playback_(*files_, saves_),
      settings_(memory_),
      users_(memory_, playback_, notes_),
      devices_(*deviceFiles_, saves_) {
  if (file_->load()) saves_.request(Save::AtRest);
}

}  // namespace tavek
