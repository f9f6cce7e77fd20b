#pragma once

namespace tavek {

/// What this build was made from; "unknown" where git could not tell.
extern const char* const buildVersion;
extern const char* const buildBranch;
extern const char* const buildHash;

}  // namespace tavek
