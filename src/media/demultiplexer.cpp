#include "media/demultiplexer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "media/error.h"
#include "media/stream_choice.h"
#include "media/tag_value.h"

namespace tavek {
namespace {

// The places that the viewer's error line names; they stay the same when the code moves.
constexpr const char* errorPlace = "video/demultiplex";
constexpr int openLine = 68;
constexpr int streamInfoLine = 73;

/// Formats whose file only names others, which it would open by itself.
constexpr std::array<std::string_view, 9> playlists{"hls", "applehttp", "concat", "dash",  "imf",
                                                    "sdp", "rtsp",      "rtp",    "vobsub"};

int interrupted(void* flag) {
  return *static_cast<const Flag*>(flag) || stopSignalled ? 1 : 0;
}

int refuseFurtherFile(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
  return AVERROR(EPERM);
}

bool namesOthers(const AVInputFormat& format) {
  const std::string_view names = format.name;
  return std::ranges::any_of(playlists, [&](std::string_view name) { return names.starts_with(name); });
}

void throwIfOpenFailed(int ret) {
  if (ret < 0) throw ffmpeg::Error(ret, "ret", errorPlace, openLine);
}

/// By the file protocol, whatever the path begins with. A pipe or a device could keep its reader for ever.
ffmpeg::IoContextPtr openFile(const std::string& path, const AVIOInterruptCB& interrupt) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) throwIfOpenFailed(AVERROR(errno));
  if (!S_ISREG(status.st_mode)) throwIfOpenFailed(AVERROR(EINVAL));
  AVIOContext* file = nullptr;
  throwIfOpenFailed(avio_open2(&file, ("file:" + path).c_str(), AVIO_FLAG_READ, &interrupt, nullptr));
  return ffmpeg::IoContextPtr(file);
}

ffmpeg::FormatContextPtr openFormat(const std::string& path, AVIOContext* file,
                                    const AVIOInterruptCB& interrupt) {
  const AVInputFormat* format = nullptr;
  throwIfOpenFailed(av_probe_input_buffer2(file, &format, path.c_str(), nullptr, 0, 0));
  if (format == nullptr || namesOthers(*format)) throwIfOpenFailed(AVERROR_INVALIDDATA);
  AVFormatContext* context = avformat_alloc_context();
  if (context == nullptr) throwIfOpenFailed(AVERROR(ENOMEM));
  context->pb = file;
  context->interrupt_callback = interrupt;
  context->io_open = refuseFurtherFile;
  // A failure frees the context too.
  throwIfOpenFailed(avformat_open_input(&context, path.c_str(), format, nullptr));
  return ffmpeg::FormatContextPtr(context);
}

AVIOInterruptCB callbackFor(const Flag& interrupt) {
  // FFmpeg hands it back as it got it.
  return {interrupted, const_cast<Flag*>(&interrupt)};
}

std::string textOf(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace

Demultiplexer::Demultiplexer(const std::string& path, std::optional<std::string> language, Pictures pictures,
                             const Flag& interrupt)
    : file_(openFile(path, callbackFor(interrupt))),
      context_(openFormat(path, file_.get(), callbackFor(interrupt))),
      preferredLanguage_(std::move(language)) {
  const int ret = avformat_find_stream_info(context_.get(), nullptr);
  if (ret < 0) {
    throw ffmpeg::Error(ret, "avformat_find_stream_info(ctx.get(), nullptr)", errorPlace, streamInfoLine);
  }
  videoIndex_ = std::max(av_find_best_stream(context_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0), -1);
  if (videoIndex_ < 0 && pictures == Pictures::Needed)
    throw ffmpeg::Error("No video stream found in input file");
  if (videoIndex_ >= 0) videoTimeBase_ = context_->streams[videoIndex_]->time_base;
  audioIndex_ = findAudioStream();
  if (audioIndex_ >= 0) audioTimeBase_ = context_->streams[audioIndex_]->time_base;
}

int Demultiplexer::findAudioStream() const {
  std::vector<AudioStream> streams;
  std::vector<int> indices;
  for (unsigned i = 0; i < context_->nb_streams; ++i) {
    const AVStream* stream = context_->streams[i];
    if (stream->codecpar->codec_type != AVMEDIA_TYPE_AUDIO) continue;
    AudioStream& audio = streams.emplace_back();
    audio.channels = stream->codecpar->ch_layout.nb_channels;
    const AVDictionaryEntry* tag = av_dict_get(stream->metadata, "language", nullptr, 0);
    if (tag != nullptr) audio.language = tag->value;
    indices.push_back(static_cast<int>(i));
  }
  const auto chosen = chooseAudioStream(streams, preferredLanguage_);
  return chosen ? indices[*chosen] : -1;
}

bool Demultiplexer::readPacket(AVPacket* packet) {
  return av_read_frame(context_.get(), packet) >= 0;
}

/// What the container keeps of the old place is dropped by FFmpeg's own seek; dropping it here too would lose
/// the time stamps of formats that have none in their packets.
bool Demultiplexer::seek(std::int64_t targetUs) {
  AVFormatContext* context = context_.get();
  const std::int64_t target = std::max<std::int64_t>(targetUs, 0) + startTimeUs();
  // A stream without an index is searched by its time stamps, which can miss the first key frame.
  const bool searched = (context->iformat->flags & AVFMT_TS_DISCONT) != 0;
  if (targetUs <= 0 && searched && av_seek_frame(context, -1, 0, AVSEEK_FLAG_BYTE) >= 0) return true;
  return av_seek_frame(context, -1, target, AVSEEK_FLAG_BACKWARD) >= 0 ||
         av_seek_frame(context, -1, target, AVSEEK_FLAG_ANY) >= 0 ||
         avformat_seek_file(context, -1, INT64_MIN, target, INT64_MAX, 0) >= 0;
}

std::int64_t Demultiplexer::startTimeUs() const {
  return context_->start_time != AV_NOPTS_VALUE ? context_->start_time : 0;
}

std::int64_t Demultiplexer::positionUs(std::int64_t stamp, AVRational timeBase) const {
  return av_rescale_q(stamp, timeBase, AVRational{1, AV_TIME_BASE}) - startTimeUs();
}

bool Demultiplexer::pictureIsAttached() const {
  return videoIndex_ >= 0 && (context_->streams[videoIndex_]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

const AVCodecParameters* Demultiplexer::videoParameters() const {
  return videoIndex_ >= 0 ? context_->streams[videoIndex_]->codecpar : nullptr;
}

const AVCodecParameters* Demultiplexer::audioParameters() const {
  return audioIndex_ >= 0 ? context_->streams[audioIndex_]->codecpar : nullptr;
}

std::int64_t Demultiplexer::durationUs() const {
  return std::max<std::int64_t>(context_->duration, 0);
}

MovieInfo Demultiplexer::movieInfo() const {
  MovieInfo info;
  info.containerName = textOf(context_->iformat->name);
  info.containerLongName = textOf(context_->iformat->long_name);
  info.durationUs = durationUs();

  if (const AVCodecParameters* video = videoParameters()) {
    info.videoCodecName = avcodec_get_name(video->codec_id);
    info.videoWidth = video->width;
    info.videoHeight = video->height;
    const AVRational rate = av_guess_frame_rate(context_.get(), context_->streams[videoIndex_], nullptr);
    if (rate.den > 0) info.videoFramesPerSecond = av_q2d(rate);
  }
  if (const AVCodecParameters* audio = audioParameters()) {
    info.audioCodecName = avcodec_get_name(audio->codec_id);
    info.audioChannels = audio->ch_layout.nb_channels;
    info.audioSampleRate = audio->sample_rate;
  }
  return info;
}

std::string Demultiplexer::tag(const char* key) const {
  const AVDictionary* stream = audioIndex_ >= 0 ? context_->streams[audioIndex_]->metadata : nullptr;
  return tagValue(context_->metadata, stream, key);
}

}  // namespace tavek
