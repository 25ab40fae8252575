// Writes a drawing: runs of unchanged objects are copied from the file as bytes, owned objects are
// written tag by tag, erased ones are left out, and new objects go before the structure they were
// added in front of (the ENDSEC, ENDTAB or ENDBLK that closes their section, table or block).
#include "cad/db/Database.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/TagWriter.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace veltarn::db {

class DatabaseWriter {
public:
    DatabaseWriter(const Database& db, dxf::OutputSink& sink)
        : db_(db), file_(*db.file_), writer_(sink, dxf::WriteFormat::of(*db.file_)) {}

    Result<void> run() {
        const bool handedOut = db_.nextHandle_ > db_.fileSeed_;
        Handle seed = handedOut ? db_.nextHandle_ : db_.minSeed_;
        // An exhausted seed (FFFFFFFFFFFFFFFF) comes down to where new handles went on, so that
        // the next program to add objects goes on from there too.
        const bool exhausted = db_.headerSeed_ > kLastHandle && handedOut && seed < db_.headerSeed_;
        rewriteSeed_ = db_.seedBegin_ != Database::kNoSlot && (seed > db_.headerSeed_ || exhausted);
        seed_ = seed;
        writer_.begin();
        for (std::uint32_t s = 0; s < db_.fileSlots_; ++s) emit(s);
        flush();
        dxf::writeEnding(file_, writer_);
        return writer_.status();
    }

private:
    void emit(std::uint32_t s) {
        if (auto it = db_.anchored_.find(s); it != db_.anchored_.end())
            for (std::uint32_t added : it->second) emit(added);
        const Database::Slot& slot = db_.slots_[s];
        if (slot.flags & Database::kErased) return;
        if (slot.flags & Database::kOwned) {
            flush();
            if (s == db_.header_ && rewriteSeed_) writeOwned(withSeed(db_.arena_.at(slot.begin, slot.size)));
            else writeOwned(db_.arena_.at(slot.begin, slot.size));
            return;
        }
        if (s == db_.header_ && rewriteSeed_) {
            flush();
            writer_.copyBytes(file_, slot.begin, db_.seedBegin_);
            writer_.write(gc::kHandle, formatHandle(seed_));
            writer_.copyBytes(file_, db_.seedEnd_, slot.begin + slot.size);
            return;
        }
        if (slot.size == 0) return;
        if (runEnd_ != slot.begin) flush();
        if (runBegin_ == runEnd_) runBegin_ = slot.begin;
        runEnd_ = slot.begin + slot.size;
    }

    // Owned tags straight from their blob. ASCII output of plain values is formatted here, the
    // way TagWriter formats it; anything else (binary files, text needing a code page, a value
    // the writer must refuse) goes through TagWriter.
    void writeOwned(std::string_view blob) {
        const dxf::WriteFormat& format = writer_.format();
        bool ascii = format.form == dxf::FileForm::Ascii;
        bool utf8 = format.codec.isUtf8();
        buffer_.clear();
        std::size_t at = 0;
        int code;
        std::string_view value;
        while (TagList::decodeTag(blob, at, code, value)) {
            if (ascii && plain(value, utf8)) {
                appendCode(buffer_, code);
                buffer_.append(format.lineEnd);
                buffer_.append(value);
                buffer_.append(format.lineEnd);
            } else {
                writer_.writeBytes(buffer_);
                buffer_.clear();
                writer_.write(code, value);
            }
        }
        writer_.writeBytes(buffer_);
    }

    // A changed header with $HANDSEED raised to the seed.
    std::string withSeed(std::string_view blob) const {
        TagList tags = TagList::decode(blob);
        std::size_t at = tags.find(gc::kVariableName, "$HANDSEED");
        if (at != TagList::npos && at + 1 < tags.size()) tags[at + 1].value = formatHandle(seed_);
        std::string out;
        tags.encode(out);
        return out;
    }

    // "%3d", without printf's cost on millions of tags: the codes DXF uses come from a table.
    static void appendCode(std::string& out, int code) {
        struct Table {
            char text[1072][5];  // the digits, right-aligned in three, then their count
            Table() {
                for (int c = 0; c < 1072; ++c) {
                    char digits[8];
                    auto [end, ec] = std::to_chars(digits, digits + sizeof digits, c);
                    (void)ec;
                    auto length = static_cast<int>(end - digits);
                    std::memset(text[c], ' ', 5);
                    std::memcpy(text[c] + std::max(0, 3 - length), digits, static_cast<std::size_t>(length));
                    text[c][4] = static_cast<char>(std::max(3, length));
                }
            }
        };
        static const Table table;
        if (code >= 0 && code <= gc::kLastCode) {
            out.append(table.text[code], static_cast<std::size_t>(table.text[code][4]));
            return;
        }
        char digits[8];
        auto [end, ec] = std::to_chars(digits, digits + sizeof digits, code);
        (void)ec;  // a 16-bit code always fits
        for (auto length = end - digits; length < 3; ++length) out += ' ';
        out.append(digits, end);
    }

    static bool plain(std::string_view value, bool utf8) {
        if (utf8) return std::memchr(value.data(), '\n', value.size()) == nullptr && std::memchr(value.data(), '\r', value.size()) == nullptr;
        for (char c : value) {
            if (c == '\r' || c == '\n') return false;
            if (static_cast<unsigned char>(c) >= 0x80) return false;
        }
        return true;
    }

    void flush() {
        if (runBegin_ != runEnd_) writer_.copyBytes(file_, runBegin_, runEnd_);
        runBegin_ = runEnd_ = 0;
    }

    const Database& db_;
    const dxf::TagFile& file_;
    dxf::TagWriter writer_;
    std::uint32_t runBegin_ = 0, runEnd_ = 0;
    bool rewriteSeed_ = false;
    std::string buffer_;
    Handle seed_ = 0;
};

Result<void> Database::write(dxf::OutputSink& sink) const { return DatabaseWriter(*this, sink).run(); }

Result<void> Database::save(const std::filesystem::path& path) const {
    return dxf::saveAtomically(path, [&](dxf::OutputSink& sink) { return write(sink); });
}

Result<std::string> Database::toText() const {
    dxf::StringSink sink;
    if (auto written = write(sink); !written) return written.error();
    return sink.take();
}

}  // namespace veltarn::db
