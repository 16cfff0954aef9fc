#include "noisepp/core/Stream.h"

#include <bit>
#include <cstring>

#include "noisepp/core/Exception.h"

namespace noisepp {
namespace {

// The stream byte order is little-endian whatever the machine's.
template <class Word>
Word toLittleEndian(Word word) {
    if constexpr (std::endian::native == std::endian::big) {
        Word swapped = 0;
        for (std::size_t i = 0; i < sizeof(Word); ++i) {
            swapped = static_cast<Word>((swapped << 8) | ((word >> (8 * i)) & 0xFF));
        }
        return swapped;
    }
    return word;
}

}  // namespace

void OutStream::writeDouble(double value) {
    const auto bits = toLittleEndian(std::bit_cast<std::uint64_t>(value));
    write(&bits, sizeof bits);
}

void OutStream::writeInt32(std::int32_t value) {
    const auto bits = toLittleEndian(std::bit_cast<std::uint32_t>(value));
    write(&bits, sizeof bits);
}

double InStream::readDouble() {
    std::uint64_t bits = 0;
    read(&bits, sizeof bits);
    return std::bit_cast<double>(toLittleEndian(bits));
}

std::int32_t InStream::readInt32() {
    std::uint32_t bits = 0;
    read(&bits, sizeof bits);
    return std::bit_cast<std::int32_t>(toLittleEndian(bits));
}

void MemoryOutStream::write(const void* buffer, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    mData.insert(mData.end(), bytes, bytes + size);
}

void MemoryInStream::read(void* buffer, std::size_t size) {
    if (size > remaining()) {
        throw StreamException("stream ended: " + std::to_string(size) + " bytes wanted, " +
                              std::to_string(remaining()) + " left");
    }
    std::memcpy(buffer, mData.data() + mPosition, size);
    mPosition += size;
}

FileOutStream::FileOutStream(const std::string& path)
    : mPath(path), mFile(std::fopen(path.c_str(), "wb")) {
    if (mFile == nullptr) throw StreamException("cannot open '" + path + "' for writing");
}

FileOutStream::~FileOutStream() {
    if (mFile != nullptr) std::fclose(mFile);
}

void FileOutStream::write(const void* buffer, std::size_t size) {
    if (mFile == nullptr || std::fwrite(buffer, 1, size, mFile) != size) {
        throw StreamException("cannot write to '" + mPath + "'");
    }
}

void FileOutStream::close() {
    if (mFile == nullptr) return;
    const bool failed = std::fclose(mFile) != 0;
    mFile = nullptr;
    if (failed) throw StreamException("cannot write to '" + mPath + "'");
}

FileInStream::FileInStream(const std::string& path)
    : mPath(path), mFile(std::fopen(path.c_str(), "rb")) {
    if (mFile == nullptr) throw StreamException("cannot open '" + path + "' for reading");
}

FileInStream::~FileInStream() {
    if (mFile != nullptr) std::fclose(mFile);
}

void FileInStream::read(void* buffer, std::size_t size) {
    if (std::fread(buffer, 1, size, mFile) != size) {
        throw StreamException("'" + mPath + "' ended before its module parameters");
    }
}

}  // namespace noisepp
