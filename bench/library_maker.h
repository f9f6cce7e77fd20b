// A large library of small files: rooms of films in folders of their own, and a series room.
#pragma once

#include <filesystem>
#include <string>

namespace tavek::bench {

/// The name of the room with so many films; that of 10,000 is "movies".
std::string filmRoom(int count);

/// Makes the library on the first call; a few films and posters stand for all, by hard links.
void makeLibrary(const std::filesystem::path& root);

}  // namespace tavek::bench
