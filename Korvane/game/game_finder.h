#pragma once

// Finds the data folders of games where the usual stores put games. Which folders those are says the caller, who knows
// the system; what they say of themselves is read here: Steam's "libraryfolders.vdf" in its old and its new form, and
// Epic's manifests. Nothing is searched deeper than a store puts a game. What is not there, cannot be read or is
// damaged is passed over: a person asks for this who can still choose a folder by hand. For a worker.

#include "EASY_GUI/services/work_port.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct game_stores
{
    std::vector<std::string> steam;          // folders of Steam itself; its libraries are found by them
    std::vector<std::string> epic_manifests; // folders of "*.item" files
    std::vector<std::string> games_folders;  // each folder in them is a game: "GOG Galaxy\Games", "Epic Games"
    std::vector<std::string> games;          // folders of games, as a registry names them
};

struct found_game
{
    std::string name;        // of its folder, or as its store calls it; UTF-8
    std::string data_folder; // whole, with a separator at its end; holds archives
    std::size_t archives = 0;
};

// Each data folder once, however often it is named, sorted by name. Progress names the folder that is looked at; when
// it is stopped the result is what was found.
[[nodiscard]] std::vector<found_game> findGames(const game_stores& stores, const work_port& work);

// The folders of the libraries that a "libraryfolders.vdf" names, in its order; of a damaged one those before the
// damage.
[[nodiscard]] std::vector<std::string> steamLibraries(std::string_view vdf);

} // namespace korvane
