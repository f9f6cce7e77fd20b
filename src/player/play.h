#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "base/clock.h"
#include "base/owner_thread.h"
#include "base/sound_mode.h"
#include "media/handles.h"
#include "media/movie_info.h"
#include "player/pacer.h"
#include "player/worker.h"
#include "sound/audio_output.h"
#include "state/stored.h"

namespace tavek {

class Engine;

struct PlayItem {
  std::string path;
  std::optional<std::string> language;  ///< preferred among sound streams of equally many channels
  SoundMode soundMode = SoundMode::Auto;
};

struct PlayServices {
  Clock& clock;
  const Stored& stored;
  PcmDeviceFactory soundDevice;
};

/// One playback of one file: it opens, plays, pauses, seeks and gives pictures; it knows no screen. The main
/// thread's, but for what its workers own. No call but the destructor waits longer than 50 ms. Positions in
/// microseconds from the file's start.
class Play {
 public:
  /// Returns at once; the file is opened in the background.
  Play(PlayItem item, const PlayServices& services);
  /// Ends the workers. What hangs in a dead disk or a stuck driver is left behind after 200 ms.
  ~Play();
  Play(const Play&) = delete;
  Play& operator=(const Play&) = delete;

  enum class Opening {
    Underway,
    Open,
    Failed,  ///< error() tells why
  };
  Opening opening() const;

  // From here on only once it is open.

  void start(std::int64_t positionUs);
  void pause();
  void resume();
  bool paused() const;
  /// Before the start, or behind a known end, is the start.
  void requestSeek(std::int64_t positionUs);

  enum class Turn {
    Picture,  ///< show picture() now
    Wait,     ///< go round with the last one
    Ended,    ///< the stream is over and heard out, or a worker failed: see error()
  };
  /// While it runs: waits at most 50 ms for the next picture and its time.
  Turn nextTurn();
  /// In a pause: takes the first picture that came after a seek. False if there is none yet.
  bool takeNewest();
  /// picture() is on the screen now. The time since nextTurn() teaches how long presenting takes.
  void presented();

  /// Planar YUV 4:2:0; null before the first. Black for a song.
  const AVFrame* picture() const;
  /// Differs between any two pictures of the process.
  std::uint64_t pictureSerial() const { return serial_; }
  /// Of the last picture, or the target of a seek since then.
  std::int64_t positionUs() const { return positionUs_; }
  /// What comes out of the device right now; 0: nobody knows.
  std::int64_t heardUs() const;
  /// 0 when it is not known.
  std::int64_t durationUs() const;
  /// There are no pictures but black ones.
  bool audioOnly() const;
  const MovieInfo& movieInfo() const;
  /// True once after a seek that the file refused; the item goes on from wherever the file stands.
  bool takeSeekFailed();

  /// Null for an item that plays silently.
  AudioOutput* sound();
  /// The strip over a series frees the device for its theme.
  void freeSoundDevice();
  void takeSoundDevice();

  /// What a worker or the opening met.
  std::exception_ptr error() const;

 private:
  bool followsSound() const;
  Turn pictureTurn(Clock::Time limit);
  Turn soundTurn(Clock::Time limit);
  bool takeNext(std::chrono::milliseconds limit);
  bool takeFresh();
  void showNext();
  bool heardOut() const;

  OwnerThread owner_;
  Clock& clock_;
  const std::shared_ptr<Engine> engine_;
  Worker reading_;
  Worker decodingPictures_;
  Worker decodingSound_;

  Pacer pacer_;
  ffmpeg::FramePtr next_;           ///< the picture that waits for its time
  std::optional<Clock::Time> due_;  ///< of next_, once that is worked out
  ffmpeg::FramePtr picture_;        ///< the one to show; null for a song
  std::uint64_t serial_ = 0;
  std::int64_t positionUs_ = 0;
  bool picturesOver_ = false;
  unsigned shownRound_ = 0;   ///< the seek after which the picture came
  Clock::Time turnAt_{};      ///< the last picture's turn
  Clock::Time positionAt_{};  ///< until when positionUs_ counts where it follows the sound
};

}  // namespace tavek
