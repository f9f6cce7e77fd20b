#include "media/demultiplexer.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "media/error.h"
#include "media/stream_choice.h"

namespace tavek {
namespace {

// The places that the viewer's error line names; they stay the same when the code moves.
constexpr const char* errorPlace = "video/demultiplex";
constexpr int openLine = 68;
constexpr int streamInfoLine = 73;

ffmpeg::FormatContextPtr open(const std::string& path) {
  AVFormatContext* context = nullptr;
  const int ret = avformat_open_input(&context, path.c_str(), nullptr, nullptr);
  if (ret < 0) throw ffmpeg::Error(ret, "ret", errorPlace, openLine);
  return ffmpeg::FormatContextPtr(context);
}

std::string textOf(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace

Demultiplexer::Demultiplexer(const std::string& path, std::optional<std::string> language)
    : context_(open(path)), preferredLanguage_(std::move(language)) {
  const int ret = avformat_find_stream_info(context_.get(), nullptr);
  if (ret < 0) {
    throw ffmpeg::Error(ret, "avformat_find_stream_info(ctx.get(), nullptr)", errorPlace, streamInfoLine);
  }
  videoIndex_ = av_find_best_stream(context_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (videoIndex_ < 0) throw ffmpeg::Error("No video stream found in input file");
  videoTimeBase_ = context_->streams[videoIndex_]->time_base;
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

bool Demultiplexer::seek(std::int64_t targetUs) {
  AVFormatContext* context = context_.get();
  const std::int64_t target = std::max<std::int64_t>(targetUs, 0);
  const bool found = av_seek_frame(context, -1, target, AVSEEK_FLAG_BACKWARD) >= 0 ||
                     av_seek_frame(context, -1, target, AVSEEK_FLAG_ANY) >= 0 ||
                     avformat_seek_file(context, -1, INT64_MIN, target, INT64_MAX, 0) >= 0;
  if (found) avformat_flush(context);
  return found;
}

const AVCodecParameters* Demultiplexer::videoParameters() const {
  return context_->streams[videoIndex_]->codecpar;
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

  const AVCodecParameters* video = videoParameters();
  info.videoCodecName = avcodec_get_name(video->codec_id);
  info.videoWidth = video->width;
  info.videoHeight = video->height;
  const AVRational rate = av_guess_frame_rate(context_.get(), context_->streams[videoIndex_], nullptr);
  if (rate.den > 0) info.videoFramesPerSecond = av_q2d(rate);

  if (const AVCodecParameters* audio = audioParameters()) {
    info.audioCodecName = avcodec_get_name(audio->codec_id);
    info.audioChannels = audio->ch_layout.nb_channels;
    info.audioSampleRate = audio->sample_rate;
  }
  return info;
}

}  // namespace tavek
