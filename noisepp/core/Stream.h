#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace noisepp {

/// Destination of a module's parameter stream. Parameters go out in declaration order with
/// their natural width, little-endian, with no header and no framing.
class OutStream {
public:
    virtual void write(const void* buffer, std::size_t size) = 0;
    virtual ~OutStream() = default;

    void writeDouble(double value);
    void writeInt32(std::int32_t value);
};

/// Source of a module's parameter stream; reads what OutStream wrote, in the same order.
/// A short read throws StreamException.
class InStream {
public:
    virtual void read(void* buffer, std::size_t size) = 0;
    virtual ~InStream() = default;

    double readDouble();
    std::int32_t readInt32();
};

/// Collects the stream in memory.
class MemoryOutStream : public OutStream {
public:
    void write(const void* buffer, std::size_t size) override;
    const std::vector<unsigned char>& data() const { return mData; }

private:
    std::vector<unsigned char> mData;
};

/// Reads a stream from a byte buffer it copies.
class MemoryInStream : public InStream {
public:
    explicit MemoryInStream(std::vector<unsigned char> data) : mData(std::move(data)) {}
    void read(void* buffer, std::size_t size) override;
    std::size_t remaining() const { return mData.size() - mPosition; }

private:
    std::vector<unsigned char> mData;
    std::size_t mPosition = 0;
};

/// Writes the stream to a file, replacing it. Failures throw StreamException naming the path.
class FileOutStream : public OutStream {
public:
    explicit FileOutStream(const std::string& path);
    ~FileOutStream() override;
    FileOutStream(const FileOutStream&) = delete;
    FileOutStream& operator=(const FileOutStream&) = delete;

    void write(const void* buffer, std::size_t size) override;
    /// Flushes and closes; throws if the data did not reach the file.
    void close();

private:
    std::string mPath;
    std::FILE* mFile = nullptr;
};

/// Reads a stream from a file. Failures throw StreamException naming the path.
class FileInStream : public InStream {
public:
    explicit FileInStream(const std::string& path);
    ~FileInStream() override;
    FileInStream(const FileInStream&) = delete;
    FileInStream& operator=(const FileInStream&) = delete;

    void read(void* buffer, std::size_t size) override;

private:
    std::string mPath;
    std::FILE* mFile = nullptr;
};

}  // namespace noisepp
