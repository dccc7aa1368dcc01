// The project's own files, read once for the tests that look at how the sources are written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct SourceFile {
    std::string path; // relative to the top of the tree, with forward slashes
    std::vector<std::string> lines;

    bool under(std::string_view folder) const;
    bool isCpp() const;
};

struct Include {
    std::string name;
    bool quoted = false;
    std::string place; // "path:line"
};

/// Every text file of the project, without build results and pictures.
const std::vector<SourceFile>& sourceTree();

std::vector<Include> includesOf(const SourceFile& file);

/// The folder names of a path or include: "host/ge/ge.h" gives host, ge, ge.h.
std::vector<std::string> parts(std::string_view path);
