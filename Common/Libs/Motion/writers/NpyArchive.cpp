#include "writers/NpyArchive.h"

#include "kaMotion/Failure.h"

#include <QString>
#include <QVector>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <minizip/zip.h>

namespace ka::motion {

namespace {

/// The file that the ZIP library writes to.
struct Memory {
    std::string bytes;
    std::size_t at = 0;
};

Memory& memoryOf(voidpf stream) {
    return *static_cast<Memory*>(stream);
}

voidpf openMemory(voidpf opaque, const void*, int) {
    return opaque;
}

uLong readMemory(voidpf, voidpf stream, void* buffer, uLong size) {
    Memory& memory = memoryOf(stream);
    const std::size_t count = std::min<std::size_t>(size, memory.bytes.size() - memory.at);
    std::memcpy(buffer, memory.bytes.data() + memory.at, count);
    memory.at += count;
    return static_cast<uLong>(count);
}

uLong writeMemory(voidpf, voidpf stream, const void* buffer, uLong size) {
    Memory& memory = memoryOf(stream);
    if (memory.bytes.size() < memory.at + size)
        memory.bytes.resize(memory.at + size);
    std::memcpy(memory.bytes.data() + memory.at, buffer, size);
    memory.at += size;
    return size;
}

ZPOS64_T tellMemory(voidpf, voidpf stream) {
    return memoryOf(stream).at;
}

long seekMemory(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    Memory& memory = memoryOf(stream);
    const std::size_t base = origin == ZLIB_FILEFUNC_SEEK_CUR   ? memory.at
                             : origin == ZLIB_FILEFUNC_SEEK_END ? memory.bytes.size()
                                                                : 0;
    if (base + offset > memory.bytes.size())
        return -1;
    memory.at = base + offset;
    return 0;
}

int closeMemory(voidpf, voidpf) {
    return 0;
}

int noError(voidpf, voidpf) {
    return 0;
}

[[noreturn]] void fail() {
    throw Failure(ExitCode::OutputFailed, "the ZIP library cannot write the archive");
}

template <class Number>
std::string_view bytesOf(const std::vector<Number>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(Number)};
}

/// "(3, 4)", "(3,)", "()".
std::string printed(const std::vector<std::size_t>& shape) {
    std::string text = "(";
    for (std::size_t i = 0; i < shape.size(); ++i)
        text += (i == 0 ? "" : " ") + std::to_string(shape[i]) + (i + 1 < shape.size() || i == 0 ? "," : "");
    return text + ")";
}

std::string headerOf(const std::string& type, const std::vector<std::size_t>& shape) {
    std::string about =
        "{'descr': '" + type + "', 'fortran_order': False, 'shape': " + printed(shape) + ", }";
    // The numbers begin at a multiple of 64 bytes.
    constexpr std::size_t prefix = 10, alignment = 64;
    about.append((alignment - (prefix + about.size() + 1) % alignment) % alignment, ' ');
    about += '\n';
    std::string header("\x93NUMPY\x01\x00", 8);
    header += static_cast<char>(about.size() & 0xFF);
    header += static_cast<char>(about.size() >> 8 & 0xFF);
    return header + about;
}

} // namespace

struct NpyArchive::Zip {
    Memory memory;
    zipFile file = nullptr;
};

NpyArchive::NpyArchive() : _zip(std::make_unique<Zip>()) {
    zlib_filefunc64_def functions{openMemory, readMemory,  writeMemory, tellMemory,
                                  seekMemory, closeMemory, noError,     &_zip->memory};
    _zip->file = zipOpen2_64("archive.npz", APPEND_STATUS_CREATE, nullptr, &functions);
    if (_zip->file == nullptr)
        fail();
}

NpyArchive::~NpyArchive() {
    if (_zip->file != nullptr)
        zipClose(_zip->file, nullptr);
}

void NpyArchive::addMember(const std::string& name, const std::string& type,
                           const std::vector<std::size_t>& shape, std::string_view bytes) {
    constexpr int stored = 0, largeMembers = 1;
    zip_fileinfo about{};
    about.tmz_date.tm_year = 1980; // the same file on every run
    about.tmz_date.tm_mday = 1;
    const std::string member = name + ".npy", header = headerOf(type, shape);
    if (zipOpenNewFileInZip64(_zip->file, member.c_str(), &about, nullptr, 0, nullptr, 0, nullptr, stored, 0,
                              largeMembers) != ZIP_OK)
        fail();
    constexpr std::size_t atOnce = std::size_t{1} << 30;
    for (std::string_view rest : {std::string_view(header), bytes})
        for (; !rest.empty(); rest.remove_prefix(std::min(rest.size(), atOnce)))
            if (zipWriteInFileInZip(_zip->file, rest.data(),
                                    static_cast<unsigned>(std::min(rest.size(), atOnce))) != ZIP_OK)
                fail();
    if (zipCloseFileInZip(_zip->file) != ZIP_OK)
        fail();
}

void NpyArchive::add(const std::string& name, const std::vector<float>& values,
                     const std::vector<std::size_t>& shape) {
    addMember(name, "<f4", shape, bytesOf(values));
}

void NpyArchive::add(const std::string& name, const std::vector<double>& values,
                     const std::vector<std::size_t>& shape) {
    addMember(name, "<f8", shape, bytesOf(values));
}

void NpyArchive::add(const std::string& name, const std::vector<std::string>& texts) {
    std::vector<QVector<uint>> rows;
    int longest = 1;
    for (const std::string& text : texts) {
        rows.push_back(QString::fromStdString(text).toUcs4());
        longest = std::max(longest, static_cast<int>(rows.back().size()));
    }
    std::vector<std::uint32_t> letters;
    for (QVector<uint>& row : rows) {
        row.resize(longest); // with zeros
        letters.insert(letters.end(), row.begin(), row.end());
    }
    addMember(name, "<U" + std::to_string(longest), {texts.size()}, bytesOf(letters));
}

std::string NpyArchive::finish() {
    const int result = zipClose(_zip->file, nullptr);
    _zip->file = nullptr;
    if (result != ZIP_OK)
        fail();
    return std::move(_zip->memory.bytes);
}

} // namespace ka::motion
