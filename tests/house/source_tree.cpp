// Walks the folders that hold sources and splits what it finds into lines.
#include "source_tree.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

constexpr std::array skippedFolders{".git", "build", "out", "__pycache__"};
constexpr std::array textEndings{".cpp", ".h",   ".txt", ".cmake", ".md",  ".py", ".sh",
                                 ".rc",  ".scr", ".lsp", ".json",  ".lin", ".svg"};

bool isText(const fs::path& path) {
    const std::string ending = path.extension().string();
    return std::ranges::find(textEndings, ending) != textEndings.end() ||
           (ending.empty() && (path.filename() == "run" || path.filename() == "check"));
}

SourceFile read(const fs::path& root, const fs::path& path) {
    SourceFile file{fs::relative(path, root).generic_string(), {}};
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        file.lines.push_back(std::move(line));
    }
    return file;
}

std::vector<SourceFile> readAll(const fs::path& root) {
    std::vector<SourceFile> files;
    auto entry = fs::recursive_directory_iterator(root);
    for (; entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().filename().string();
        if (entry->is_directory() && std::ranges::find(skippedFolders, name) != skippedFolders.end()) {
            entry.disable_recursion_pending();
        } else if (entry->is_regular_file() && isText(entry->path())) {
            files.push_back(read(root, entry->path()));
        }
    }
    std::ranges::sort(files, {}, &SourceFile::path);
    return files;
}

} // namespace

bool SourceFile::under(std::string_view folder) const {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

bool SourceFile::isCpp() const {
    return path.ends_with(".cpp") || path.ends_with(".h");
}

const std::vector<SourceFile>& sourceTree() {
    static const std::vector<SourceFile> files = readAll(QDV_SOURCE_DIR);
    return files;
}

std::vector<Include> includesOf(const SourceFile& file) {
    constexpr std::string_view directive = "#include ";
    std::vector<Include> includes;
    for (std::size_t number = 0; number < file.lines.size(); ++number) {
        const std::string& line = file.lines[number];
        if (!line.starts_with(directive) || line.size() < directive.size() + 3) {
            continue;
        }
        const bool quoted = line[directive.size()] == '"';
        const std::size_t begin = directive.size() + 1;
        const std::size_t end = line.find(quoted ? '"' : '>', begin);
        if (end != std::string::npos) {
            includes.push_back(
                {line.substr(begin, end - begin), quoted, file.path + ":" + std::to_string(number + 1)});
        }
    }
    return includes;
}

std::vector<std::string> parts(std::string_view path) {
    std::vector<std::string> result;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        result.emplace_back(path.substr(0, slash));
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    }
    return result;
}
