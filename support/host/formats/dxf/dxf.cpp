// The entries of the DXF reader and writer: files and memory, and the line for what went wrong.
#include "host/formats/dxf/reader.h"
#include "host/formats/dxf/writer.h"
#include "host/win/fileio.h"

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

CodePage pageOf(const AcDbDatabase& database) {
    return codePageByName(database.impl().codePage).value_or(CodePage::ansi936);
}

void write(AcDbDatabase& database, AcDb::AcDbDwgVersion version, dxf::TextWriter::Sink sink) {
    dxf::TextWriter out(database, version, pageOf(database), std::move(sink));
    dxf::Writer(database, out, version).write();
}

} // namespace

WriteResult writeDxf(AcDbDatabase& database, const std::filesystem::path& file,
                     const DxfWriteOptions& options) {
    AtomicFile output(file, options.backup ? AtomicFile::Backup::keep : AtomicFile::Backup::none);
    if (!output.failed()) {
        write(database, options.version, [&](std::string_view text) { return output.write(text); });
    }
    WriteResult result;
    if (output.failed() || !output.commit()) {
        result.status = Acad::eFileAccessErr;
        result.message = output.errorText();
    }
    return result;
}

std::string writeDxfText(AcDbDatabase& database, const DxfWriteOptions& options) {
    std::string text;
    write(database, options.version, [&](std::string_view piece) {
        text += piece;
        return true;
    });
    return text;
}

} // namespace host
