#include "display/theme/theme_player.h"

#include <exception>
#include <iomanip>
#include <iostream>
#include <utility>

#include "base/background_job.h"
#include "library/file_types.h"
#include "media/codec.h"
#include "media/demultiplexer.h"

namespace tavek {
namespace {

constexpr double themeDb = -12;
constexpr std::chrono::milliseconds letGoLimit{300};

constexpr std::chrono::milliseconds step{10};

/// A null packet gives what the decoder still has.
void decode(const Flag& stop, const AVPacket* packet, AVFrame* frame, Codec& codec, AudioOutput& output) {
  Decoded sent = Decoded::NotNow;
  for (bool moves = true; sent == Decoded::NotNow && moves && !stop;) {
    sent = codec.sendPacket(packet);
    moves = false;
    while (!stop && codec.receiveFrame(frame) == Decoded::Done) {
      output.write(frame);
      av_frame_unref(frame);
      moves = true;
    }
  }
}

void tell(const char* what, const std::filesystem::path& file, const std::string& reason = {}) {
  if (!debugEnabled) return;
  std::cout << "[THEME] " << what << ' ' << std::quoted(file.string()) << reason << std::endl;
}

}  // namespace

struct ThemePlayer::Shared {
  Shared(PcmDeviceFactory f, const Stored& s, Clock& c) : factory(std::move(f)), stored(s), clock(c) {}

  struct State {
    std::filesystem::path wanted;   ///< to be played next
    SoundMode mode{};               ///< in which it is
    AudioOutput* output = nullptr;  ///< the thread's, while it plays
    bool atWork = false;            ///< the device may be open
    bool missing = false;
    bool over = false;
  };
  /// Silence at once, with nothing to follow.
  void silence() {
    const auto held = state.hold();
    stop = true;
    held->wanted.clear();
    if (held->output == nullptr) return;
    held->output->hold();
    held->output->interrupt();
  }

  const PcmDeviceFactory factory;
  const Stored stored;
  Clock& clock;
  Flag stop;  ///< ends what plays
  Guarded<State> state;
  std::condition_variable changed;
};

ThemePlayer::ThemePlayer(PcmDeviceFactory factory, const Stored& stored, Clock& clock)
    : shared_(std::make_shared<Shared>(std::move(factory), stored, clock)),
      ended_(std::make_shared<Flag>()),
      thread_([shared = shared_, ended = ended_] {
        run(shared);
        *ended = true;
      }) {}

ThemePlayer::~ThemePlayer() {
  shared_->silence();
  shared_->state.hold()->over = true;
  shared_->changed.notify_all();
  leaveThread(std::move(thread_), std::move(ended_));
}

void ThemePlayer::startTheme(const std::filesystem::path& file, SoundMode mode) {
  stopTheme();
  tell("start", file);
  const auto state = shared_->state.hold();
  state->wanted = file;
  state->mode = mode;
  state->missing = false;
  shared_->changed.notify_all();
}

void ThemePlayer::stopTheme() {
  shared_->silence();
}

bool ThemePlayer::takeMissing() {
  return std::exchange(shared_->state.hold()->missing, false);
}

PcmDeviceFactory ThemePlayer::sharing(PcmDeviceFactory factory) const {
  return [shared = shared_, factory = std::move(factory)](const DeviceWish& wish) {
    shared->silence();
    auto state = shared->state.hold();
    shared->changed.wait_for(state.lock(), letGoLimit, [&] { return !state->atWork; });
    state.lock().unlock();
    return factory(wish);
  };
}

void ThemePlayer::run(const std::shared_ptr<Shared>& shared) {
  for (;;) {
    std::filesystem::path file;
    SoundMode mode{};
    {
      auto state = shared->state.hold();
      shared->changed.wait(state.lock(), [&] { return state->over || !state->wanted.empty(); });
      if (state->over) return;
      file = std::exchange(state->wanted, {});
      mode = state->mode;
      state->atWork = true;
      shared->stop = false;
    }
    play(*shared, file, mode);
    shared->state.hold()->atWork = false;
    shared->changed.notify_all();
  }
}

void ThemePlayer::play(Shared& shared, const std::filesystem::path& path, SoundMode mode) {
  if (!isUsableFile(path)) {
    shared.state.hold()->missing = true;
    return;
  }
  std::unique_ptr<Demultiplexer> file;
  try {
    file = std::make_unique<Demultiplexer>(path.string(), std::nullopt, Pictures::Optional, shared.stop);
  } catch (const std::exception&) {
    return tell("failed to open", path);
  }
  if (file->audioParameters() == nullptr) return tell("no audio stream", path);
  try {
    Codec codec(file->audioParameters());
    AudioOutput output(file->audioParameters(), "", mode, shared.stored, shared.factory, shared.clock,
                       themeDb);
    sound(shared, *file, codec, output);
  } catch (const std::exception& error) {
    tell("audio init failed", path, std::string(": ") + error.what());
  }
}

void ThemePlayer::sound(Shared& shared, Demultiplexer& file, Codec& codec, AudioOutput& output) {
  shared.state.hold()->output = &output;
  try {
    const ffmpeg::PacketPtr packet = ffmpeg::makePacket();
    const ffmpeg::FramePtr frame = ffmpeg::makeFrame();
    while (packet && frame && !shared.stop && file.readPacket(packet.get())) {
      if (packet->stream_index == file.audioStreamIndex())
        decode(shared.stop, packet.get(), frame.get(), codec, output);
      av_packet_unref(packet.get());
    }
    if (frame) decode(shared.stop, nullptr, frame.get(), codec, output);
  } catch (const std::exception&) {
    // What was decoded so far sounds.
  }
  while (!shared.stop && output.heard() && output.delayUs() > 0) shared.clock.sleepFor(step);
  shared.state.hold()->output = nullptr;
  if (shared.stop) output.hold();
}

}  // namespace tavek
