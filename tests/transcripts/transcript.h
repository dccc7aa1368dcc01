// A transcript: a test of commands in the form of the dialogue as it appears. Options stand first, then what
// the host shows with the typed answers between, then what became of the drawing.
//
//   ; a comment                        before the first line of the dialogue
//   @drawing samples/route-map.dxf     drawing to begin with, from the top of the tree; default: a new one
//   @module none                       or a file beside the program, may be repeated; default:
//   QDVCommonTools.arx 命令:                              a line that the host shows > LINE an answer; "> "
//   alone is Enter, ^C is Escape
//   ===                                begin of the changes: lines of the drawing that came (+) or went (-)
//   + LINE *Model_Space 8=0 10=(0 0 0) 11=(1 0 0)
//
// A shown line that begins with one of > = ; @ \ has a \ before it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct Transcript {
    std::vector<std::string> heading; ///< comments and options as they stand
    std::string drawing;
    std::vector<std::string> modules;
    std::string dialogue; ///< shown lines and answers as they stand
    std::string changes;

    /// Every answer on a line of its own, as a script.
    std::string script() const;
    std::string text() const;
};

/// Throws std::runtime_error when the file can't be read or an option is unknown.
Transcript readTranscript(const std::filesystem::path& file);

std::vector<std::string> linesOf(std::string_view text);

/// The first place where two texts differ, with the lines before it; empty when they are equal.
std::string firstDifference(const std::string& expected, const std::string& actual);

/// The lines that came and went between two lists, sorted.
std::string changesBetween(std::vector<std::string> before, std::vector<std::string> after);
