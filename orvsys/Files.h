#pragma once
#include "orvsys/Export.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace OrvSys {

// A file's name and place: a path as the system takes it, in the platform's 8-bit text. The file need not exist.
class ORVSYS_API FileSpec {
public:
    explicit FileSpec(const std::string& path);

    const std::string& GetPath() const;

private:
    std::string path_;
};

// What the offset of a seek is counted from.
enum SeekOrigin : std::int32_t { FromStart, FromCurrent, FromEnd };

// The bytes of an open file and one position among them, counted in bytes from 0, for reading and writing alike.
//
// Both directions go through one buffer of 64 KiB, made when it is first needed. Reads, writes and seeks may be mixed
// freely and give what they would give without a buffer, as long as nothing else changes the file meanwhile. Written
// bytes reach the file when the buffer is needed for another place or the file is closed.
//
// No operation reports an error: a failed read gives 0, a failed write is dropped. On a file that is not open reading
// gives 0, position and length are 0, and nothing else has an effect. An allocation that fails throws std::bad_alloc
// from the operation that needed the buffer and changes nothing. One thread at a time may use an object.
class ORVSYS_API FileIOBase {
public:
    // Closes the file; bytes not yet written are written first.
    virtual ~FileIOBase();

    FileIOBase(const FileIOBase&) = delete;
    FileIOBase& operator=(const FileIOBase&) = delete;

    // The byte at the position, which moves past it. At or past the end, in a file that cannot be read, and after an
    // error of the system it gives 0 and the position stays.
    std::uint8_t ReadUInt8();

    // As ReadUInt8 for as many bytes as there are, at most `count`; the result is their number. Many go past the
    // buffer, which stays as it is. `bytes` must not lie in what BufferedBytes gave.
    std::size_t ReadBytes(char* bytes, std::size_t count);

    // Puts the byte at the position, over the one that is there or after the end, and moves past it. Written past the
    // end, the gap is filled with zeros. In a file that was opened for reading nothing happens. Where the system
    // refuses the byte later (a full disk), the position has moved and the file holds what it held.
    void WriteUInt8(std::uint8_t byte);

    // As WriteUInt8 for each of the bytes. `bytes` must not lie in what BufferedBytes gave.
    void WriteBytes(const char* bytes, std::size_t count);

    // Moves the position, also past the end. An offset that leads before the start, or beyond what 64 bits hold, does
    // nothing. Moving costs no system call (except to ask for the length, when counted from the end), and reading on
    // costs none as long as the buffer holds the byte.
    void Seek(std::int64_t offset, SeekOrigin origin = FromStart);

    // Makes no system call.
    std::int64_t GetPosition() const;

    // The file's length in bytes, those counted that are written but still in the buffer. Asks the system each time.
    std::int64_t GetLength() const;

    bool IsOpen() const;

    // The bytes from the position on that are at hand in memory, `count` of them; when there are none the buffer is
    // filled first. `count` is 0 where ReadUInt8 would fail, and the result is then null. The position does not move.
    // The bytes stay the file's and are valid until the next operation on it, SkipBuffered, GetPosition, GetLength and
    // IsOpen aside.
    const char* BufferedBytes(std::size_t& count);

    // Moves the position over that many of the bytes that BufferedBytes gave, at most all of them.
    void SkipBuffered(std::size_t count);

protected:
    FileIOBase();

    // Takes over an open descriptor of a regular file, to be closed by Detach or the destructor; the position is 0. No
    // file may be attached.
    void Attach(int openDescriptor, bool canRead, bool canWrite);

    // Writes what is still to be written, closes the descriptor and gives the buffer back. Without a file, nothing.
    void Detach();

private:
    ORVSYS_LOCAL bool HasUnwritten() const;
    ORVSYS_LOCAL bool Holds(std::int64_t place) const;
    ORVSYS_LOCAL void NeedBuffer();
    ORVSYS_LOCAL void Fill();
    ORVSYS_LOCAL void Flush();
    ORVSYS_LOCAL void PrepareToWrite();

    int descriptor;
    bool readable;
    bool writable;
    std::int64_t position;

    // The buffer holds the file's bytes [bufferStart, bufferStart + heldCount) as they are or, between unwrittenBegin
    // and unwrittenEnd (offsets in the buffer), as they will be once written.
    std::unique_ptr<char[]> buffer;
    std::int64_t bufferStart;
    std::size_t heldCount;
    std::size_t unwrittenBegin;
    std::size_t unwrittenEnd;
};

// A file that is opened and closed by name.
//
//   OrvSys::FileIO file(OrvSys::FileSpec("menu.xml"));
//   if (file.OpenForReading()) firstByte = file.ReadUInt8();
//
// Only regular files (and links to them) are opened: a directory, device, pipe or socket is refused at once, without
// waiting for anybody at its other end. A path with a zero byte in it names no file. The file is closed with the
// object.
class ORVSYS_API FileIO : public FileIOBase {
public:
    // Keeps a copy of the name; nothing is opened yet.
    explicit FileIO(const FileSpec& spec);

    // Opens the file for reading alone, at position 0. False when there is no such file or it may not be read; the
    // object is then closed. A file that the object has open is closed first, whatever comes of it.
    bool OpenForReading();

    // Opens the file for writing, and for reading where that is permitted, at position 0. What the file holds is kept;
    // a file that is missing is created. False when it cannot be; the rest is as in OpenForReading.
    bool OpenForWriting();

    // Writes what is still to be written and closes the file. On a file that is not open, nothing.
    void Close();

private:
    FileSpec spec_;
};

// What is done to files by name, without opening them for the caller.
class ORVSYS_API FileSpecFunctions {
public:
    // Creates an empty file, or empties the regular file that is there. False, and nothing changed, when that cannot be
    // done. The type code (four characters, the first in the highest byte) is for systems that keep one with each file;
    // this one has no place for it.
    static bool CreateFile(const FileSpec& spec, std::uint32_t typeCode);
};

}  // namespace OrvSys
