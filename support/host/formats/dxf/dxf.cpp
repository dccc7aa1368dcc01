// The entries of the DXF reader and writer: files and memory, and the line for what went wrong.
#include "host/formats/dxf/binarywriter.h"
#include "host/formats/dxf/reader.h"
#include "host/formats/dxf/textwriter.h"
#include "host/formats/dxf/writer.h"
#include "host/rx/format.h"
#include "host/win/fileio.h"

#include <algorithm>

namespace host {

ReadResult readDxfText(AcDbDatabase& database, std::string_view bytes) {
    ReadResult result;
    const UndoLog::Suspend suspend(database.undoLog());
    try {
        dxf::GroupScanner scanner(bytes);
        dxf::Reader(database, scanner, result.report).read();
    } catch (const dxf::FormatError& error) {
        result.status = Acad::eBadDxfFile;
        result.message = error.message;
    } catch (const dxf::ReadingStopped&) {
        result.status = Acad::eUserBreak;
        result.message = L"已取消打开";
    } catch (const std::bad_alloc&) {
        result.status = Acad::eOutOfMemory;
        result.message = L"内存不足, 无法读取文件";
    }
    return result;
}

ReadResult readDxf(AcDbDatabase& database, const std::filesystem::path& file) {
    MappedFile mapped;
    if (!mapped.open(file)) {
        ReadResult result;
        result.status = mapped.systemError() == ENOENT ? Acad::eFileNotFound : Acad::eFileAccessErr;
        result.message = mapped.errorText();
        return result;
    }
    ReadResult result = readDxfText(database, mapped.text());
    if (mapped.damaged() && result.status == Acad::eOk) {
        result.status = Acad::eFileAccessErr;
        result.message = L"文件在读取时被其他程序截断";
    }
    return result;
}

namespace {

/// The drawing's page; one that cannot hold a file's text gives way to the Chinese one.
CodePage pageOf(const AcDbDatabase& database) {
    const CodePage page = codePageByName(database.impl().codePage).value_or(CodePage::ansi936);
    return page == CodePage::utf8 || page == CodePage::utf16 ? CodePage::ansi936 : page;
}

void write(AcDbDatabase& database, dxf::GroupWriter& out, ReadReport& report) {
    if (out.version() >= AcDb::kDHL_1032) {
        dxf::Writer(database, out, nullptr).write();
        return;
    }
    dxf::VersionFilter filter(database, out);
    dxf::Writer(database, out, &filter).write();
    filter.reportTo(report);
}

void write(AcDbDatabase& database, const DxfWriteOptions& options, dxf::Sink sink, ReadReport& report) {
    const AcDb::AcDbDwgVersion version = std::clamp(options.version, AcDb::kDHL_1015, AcDb::kDHL_1032);
    const CodePage page = pageOf(database);
    if (!options.binary) {
        dxf::TextWriter out(database, version, page, std::move(sink));
        write(database, out, report);
        return;
    }
    dxf::BinaryWriter out(database, version, page, std::move(sink));
    write(database, out, report);
    if (const std::size_t count = out.clampedNumbers(); count > 0) {
        report.add({0, 0, formatted(L"%I64d 个整数超出二进制文件的范围", static_cast<long long>(count)),
                    ReadEntry::Done::repaired});
    }
}

} // namespace

WriteResult writeDxf(AcDbDatabase& database, const std::filesystem::path& file,
                     const DxfWriteOptions& options) {
    WriteResult result;
    AtomicFile output(file, options.backup ? AtomicFile::Backup::keep : AtomicFile::Backup::none);
    if (!output.failed()) {
        write(
            database, options, [&](std::string_view bytes) { return output.write(bytes); }, result.report);
    }
    if (output.failed() || !output.commit()) {
        result.status = Acad::eFileAccessErr;
        result.message = output.errorText();
    }
    return result;
}

std::string writeDxfText(AcDbDatabase& database, const DxfWriteOptions& options, ReadReport* report) {
    std::string bytes;
    ReadReport ignored;
    write(
        database, options,
        [&](std::string_view piece) {
            bytes += piece;
            return true;
        },
        report != nullptr ? *report : ignored);
    return bytes;
}

} // namespace host
