#include "player/play.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "media/error.h"
#include "player/black_picture.h"
#include "player/engine.h"
#include "player/seek_rules.h"

extern "C" {
#include <libavutil/error.h>
}

namespace tavek {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds longestTurn{50};
/// How often the position of a song moves on.
constexpr microseconds songStep{33'333};
/// Near its end, so that the next one is not kept waiting.
constexpr microseconds lastSongStep{4'000};
constexpr std::int64_t songEndUs = 300'000;
constexpr milliseconds endingLimit{200};

/// Counted over all items: the screen still holds the last picture of the one before.
std::uint64_t nextSerial() {
  static std::uint64_t taken = 0;
  return ++taken;
}

}  // namespace

Play::Play(PlayItem item, const PlayServices& services)
    : clock_(services.clock),
      engine_(std::make_shared<Engine>(std::move(item), services)),
      pacer_(services.clock) {
  try {
    reading_.start([engine = engine_] { engine->openAndRead(); });
  } catch (...) {
    engine_->fail();
  }
}

Play::~Play() {
  engine_->exchange().close();
  // A decoder may wait for its pictures.
  next_.reset();
  picture_.reset();
  const auto limit = std::chrono::steady_clock::now() + endingLimit;
  const bool opened = opening() != Opening::Underway;
  if (opened && sound() != nullptr) {
    // What a pause holds back is not wanted any more.
    if (paused()) sound()->flush();
    sound()->interrupt();
  }
  decodingPictures_.endBy(limit);
  const bool readingEnded = reading_.endBy(limit);
  if (decodingSound_.endBy(limit) && (opened || readingEnded)) engine_->endSound();
}

Play::Opening Play::opening() const {
  return engine_->opening();
}

void Play::start(std::int64_t positionUs) {
  owner_.check();
  positionAt_ = clock_.now();
  if (positionUs > 0) {
    requestSeek(positionUs);
  } else {
    engine_->exchange().startReading();
  }
  try {
    if (engine_->hasPictures()) decodingPictures_.start([engine = engine_] { engine->decodePictures(); });
    if (sound() != nullptr) decodingSound_.start([engine = engine_] { engine->decodeSound(); });
  } catch (...) {
    engine_->fail();
  }
}

void Play::pause() {
  owner_.check();
  engine_->exchange().paused = true;
  if (sound() != nullptr) sound()->hold();
  engine_->exchange().soundClock.pause(clock_.now());
}

void Play::resume() {
  owner_.check();
  engine_->exchange().paused = false;
  if (sound() != nullptr) sound()->resume();
  due_.reset();
  positionAt_ = clock_.now();
  pacer_.resume();
  engine_->exchange().soundClock.resume(clock_.now());
}

void Play::requestSeek(std::int64_t positionUs) {
  owner_.check();
  positionUs_ = wrapPosition(positionUs, durationUs());
  positionAt_ = clock_.now();
  next_.reset();
  due_.reset();
  picturesOver_ = false;
  pacer_.seek();
  if (sound() != nullptr) sound()->flush();
  engine_->exchange().seek(positionUs_);
}

Play::Turn Play::nextTurn() {
  owner_.check();
  if (error()) return Turn::Ended;
  const Clock::Time limit = clock_.now() + longestTurn;
  const Turn turn = followsSound() ? soundTurn(limit) : pictureTurn(limit);
  Exchange& exchange = engine_->exchange();
  if (turn == Turn::Ended && !exchange.anyDecoded && !exchange.anySeek())
    exchange.fail(std::make_exception_ptr(ffmpeg::Error(AVERROR_INVALIDDATA)));
  return turn;
}

/// There are no pictures that could tell the position.
bool Play::followsSound() const {
  return picturesOver_ || audioOnly() || engine_->hasStill();
}

Play::Turn Play::pictureTurn(Clock::Time limit) {
  const Exchange& exchange = engine_->exchange();
  while (!due_) {
    if (!next_ && !takeNext(longestTurn)) {
      if (picturesOver_) return soundTurn(limit);
      pacer_.starve();
      clock_.sleepUntil(limit);
      return Turn::Wait;
    }
    due_ = pacer_.due(next_->pts, exchange.soundClock, !exchange.pictures.empty());
    if (due_) break;
    next_.reset();
    if (clock_.now() >= limit) return Turn::Wait;
  }
  clock_.sleepUntil(std::min(*due_, limit));
  if (clock_.now() < *due_) return Turn::Wait;
  showNext();
  return Turn::Picture;
}

/// The position follows the sound, or goes on by itself where nobody knows what is heard.
Play::Turn Play::soundTurn(Clock::Time limit) {
  if (heardOut()) return Turn::Ended;
  const bool fresh = takeFresh();
  const bool nearEnd = positionUs_ + songEndUs > durationUs();
  clock_.sleepUntil(std::min(clock_.now() + (nearEnd ? lastSongStep : songStep), limit));
  const Clock::Time now = clock_.now();
  const auto passed = std::chrono::duration_cast<microseconds>(now - positionAt_).count();
  const std::int64_t heard = heardUs();
  positionUs_ = heard > 0 ? heard : positionUs_ + passed;
  if (durationUs() > 0) positionUs_ = std::min(positionUs_, durationUs());
  positionAt_ = now;
  return fresh ? Turn::Picture : Turn::Wait;
}

bool Play::heardOut() const {
  if (engine_->sound() != nullptr) return engine_->exchange().soundOver();
  const bool timed = audioOnly() || engine_->hasStill();
  return !timed || positionUs_ >= durationUs();
}

/// The next picture of the present place. False if none comes in time, or none any more.
bool Play::takeNext(milliseconds limit) {
  Exchange& exchange = engine_->exchange();
  Tagged<ffmpeg::FramePtr> taken;
  while (exchange.pictures.popWithin(taken, limit)) {
    if (taken.seekRound != exchange.round()) continue;
    next_ = std::move(taken.item);
    if (next_) return true;
    picturesOver_ = true;
    positionAt_ = clock_.now();
    return false;
  }
  return false;
}

void Play::showNext() {
  if (next_ && !followsSound()) positionUs_ = next_->pts;
  picture_ = std::move(next_);
  due_.reset();
  serial_ = nextSerial();
  shownRound_ = engine_->exchange().round();
  turnAt_ = clock_.now();
}

bool Play::takeFresh() {
  if (shownRound_ == engine_->exchange().round()) return false;
  if (!audioOnly() && !takeNext(milliseconds(0))) return false;
  showNext();
  return true;
}

bool Play::takeNewest() {
  owner_.check();
  return takeFresh();
}

void Play::presented() {
  pacer_.presented(turnAt_);
}

const AVFrame* Play::picture() const {
  if (audioOnly()) return shownRound_ > 0 ? blackPicture() : nullptr;
  return picture_.get();
}

std::int64_t Play::heardUs() const {
  return engine_->exchange().soundClock.heardUs(clock_.now());
}

std::int64_t Play::durationUs() const {
  return engine_->movieInfo().durationUs;
}

bool Play::paused() const {
  return engine_->exchange().paused;
}

bool Play::audioOnly() const {
  return !engine_->hasPictures();
}

const MovieInfo& Play::movieInfo() const {
  return engine_->movieInfo();
}

bool Play::takeSeekFailed() {
  Flag& failed = engine_->exchange().seekFailed;
  if (!failed) return false;
  failed = false;
  return true;
}

AudioOutput* Play::sound() {
  return engine_->sound();
}

void Play::freeSoundDevice() {
  if (sound() != nullptr) sound()->close();
}

void Play::takeSoundDevice() {
  if (sound() != nullptr) sound()->reopen();
}

std::exception_ptr Play::error() const {
  return engine_->exchange().error();
}

}  // namespace tavek
