#pragma once

namespace tavek {

/// What the numbers of a picture in planar YUV mean, as far as a screen can show them: the matrix, with the
/// television's limited range or the full one.
enum class PictureColours { Bt601, Bt601Full, Bt709 };

}  // namespace tavek
