#pragma once

#include <cstdlib>
#include <memory>

#include <alsa/asoundlib.h>

/// Owners of ALSA's C objects.
namespace tavek {

struct AlsaDeleter {
  void operator()(snd_pcm_t* pcm) const { snd_pcm_close(pcm); }
  void operator()(snd_pcm_info_t* info) const { snd_pcm_info_free(info); }
  void operator()(snd_pcm_hw_params_t* params) const { snd_pcm_hw_params_free(params); }
  // ALSA hands its maps over as plain blocks of malloc.
  void operator()(snd_pcm_chmap_t* map) const { std::free(map); }  // NOLINT(*-no-malloc, *-owning-memory)
};

using PcmHandle = std::unique_ptr<snd_pcm_t, AlsaDeleter>;
using PcmInfoHandle = std::unique_ptr<snd_pcm_info_t, AlsaDeleter>;
using HardwareParametersHandle = std::unique_ptr<snd_pcm_hw_params_t, AlsaDeleter>;
using PositionMapHandle = std::unique_ptr<snd_pcm_chmap_t, AlsaDeleter>;

}  // namespace tavek
