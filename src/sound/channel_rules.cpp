#include "sound/channel_rules.h"

#include <algorithm>
#include <array>
#include <optional>

#include <alsa/asoundlib.h>

namespace tavek {
namespace {

struct NamedChannel {
  AVChannel channel;
  unsigned position;
};

constexpr std::array<NamedChannel, 8> namedChannels = {{
    {AV_CHAN_FRONT_LEFT, SND_CHMAP_FL},
    {AV_CHAN_FRONT_RIGHT, SND_CHMAP_FR},
    {AV_CHAN_FRONT_CENTER, SND_CHMAP_FC},
    {AV_CHAN_LOW_FREQUENCY, SND_CHMAP_LFE},
    {AV_CHAN_BACK_LEFT, SND_CHMAP_RL},
    {AV_CHAN_BACK_RIGHT, SND_CHMAP_RR},
    {AV_CHAN_SIDE_LEFT, SND_CHMAP_SL},
    {AV_CHAN_SIDE_RIGHT, SND_CHMAP_SR},
}};

bool has(const AVChannelLayout& layout, AVChannel channel) {
  return av_channel_layout_index_from_channel(&layout, channel) >= 0;
}

AVChannelLayout defaultLayout(int channels) {
  AVChannelLayout layout{};
  av_channel_layout_default(&layout, channels);
  return layout;
}

std::optional<AVChannel> channelAt(unsigned position) {
  // Read, but never asked for: a device that has a rear centre says so itself.
  if (position == SND_CHMAP_RC) return AV_CHAN_BACK_CENTER;
  const auto* found = std::ranges::find(namedChannels, position, &NamedChannel::position);
  return found != namedChannels.end() ? std::optional(found->channel) : std::nullopt;
}

bool isFront(unsigned position) {
  return position == SND_CHMAP_FL || position == SND_CHMAP_FR;
}

}  // namespace

int outgoingChannels(const AVChannelLayout& source, SoundMode soundMode) {
  const bool surroundWanted = soundMode != SoundMode::Stereo;
  const bool hasFront = (has(source, AV_CHAN_FRONT_LEFT) && has(source, AV_CHAN_FRONT_RIGHT)) ||
                        has(source, AV_CHAN_FRONT_CENTER);
  const bool fits = source.nb_channels >= 3 && source.nb_channels <= 6;
  return surroundWanted && hasFront && fits ? source.nb_channels : 2;
}

std::vector<unsigned> requestedPositions(int channels) {
  const AVChannelLayout layout = defaultLayout(channels);
  std::vector<unsigned> positions(static_cast<std::size_t>(channels), SND_CHMAP_UNKNOWN);
  for (const NamedChannel& named : namedChannels) {
    const int index = av_channel_layout_index_from_channel(&layout, named.channel);
    if (index >= 0 && index < channels) positions[static_cast<std::size_t>(index)] = named.position;
  }
  return positions;
}

std::vector<std::size_t> channelMapFor(std::span<const unsigned> devicePositions, int channels) {
  const auto count = static_cast<std::size_t>(std::max(channels, 0));
  if (count == 0 || devicePositions.size() != count) return {};
  if (count > 1 && !(isFront(devicePositions[0]) && isFront(devicePositions[1]))) return {};

  const AVChannelLayout layout = defaultLayout(channels);
  std::vector<std::size_t> map(count);
  bool sameOrder = true;
  for (std::size_t slot = 0; slot < count; ++slot) {
    const auto channel = channelAt(devicePositions[slot]);
    const int index = channel ? av_channel_layout_index_from_channel(&layout, *channel) : -1;
    map[slot] = index >= 0 && index < channels ? static_cast<std::size_t>(index) : slot;
    sameOrder = sameOrder && map[slot] == slot;
  }
  return sameOrder ? std::vector<std::size_t>{} : map;
}

void reorderChannels(std::span<std::int16_t> samples, std::span<const std::size_t> channelMap) {
  if (channelMap.empty()) return;
  std::array<std::int16_t, 8> frame{};
  for (; samples.size() >= channelMap.size(); samples = samples.subspan(channelMap.size())) {
    std::copy_n(samples.begin(), channelMap.size(), frame.begin());
    for (std::size_t slot = 0; slot < channelMap.size(); ++slot) samples[slot] = frame[channelMap[slot]];
  }
}

}  // namespace tavek
