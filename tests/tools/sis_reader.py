#!/usr/bin/env python3
"""Independent reader of the pre-version-9 installation package layout.

Reads a .SIS and prints what it holds as JSON: UIDs and whether UID4 and the
header checksum verify, languages, component names, requisites and every
file record with its destination and the SHA-256 of its data after
decompression. Exits 1 with a message on stderr when the file does not hold
together (pointers outside the file, data that does not decompress).
"""
import binascii
import hashlib
import json
import struct
import sys
import zlib

HEADER = struct.Struct("<IIIIHHHHHHHHIHHHHIIIIIIIIII16s")


class Broken(Exception):
    pass


class Package:
    def __init__(self, data):
        self.data = data
        if len(data) < HEADER.size:
            raise Broken("shorter than the header")
        (self.uid1, self.uid2, self.uid3, self.uid4, self.checksum, self.languages,
         self.files, self.requisites, _install_language, _install_files, self.drive,
         self.capabilities, self.installer, self.options, self.type, self.major,
         self.minor, self.variant, self.languages_ptr, self.files_ptr, self.requisites_ptr,
         self.certificates_ptr, self.name_ptr, self.signature_ptr, self.capabilities_ptr,
         self.installed_space, self.max_space, _reserved) = HEADER.unpack_from(data, 0)
        self.string_spans = []
        self.data_spans = []

    def piece(self, offset, length):
        if offset + length > len(self.data):
            raise Broken("span %d+%d runs past the end (%d)" % (offset, length, len(self.data)))
        return self.data[offset:offset + length]

    def words(self, fmt, offset):
        size = struct.calcsize(fmt)
        return struct.unpack(fmt, self.piece(offset, size)), offset + size

    def string(self, length, pointer):
        raw = self.piece(pointer, length)
        self.string_spans.append((pointer, length))
        if self.options & 0x0001:
            return raw.decode("utf-16-le")
        return raw.decode("latin-1")

    def uid4_expected(self):
        head = self.data[:12]
        even = binascii.crc_hqx(head[0::2], 0)
        odd = binascii.crc_hqx(head[1::2], 0)
        return even | (odd << 16)

    def checksum_expected(self):
        return binascii.crc_hqx(self.data[:0x10] + self.data[0x12:], 0)

    def read_languages(self):
        codes, _ = self.words("<%dH" % self.languages, self.languages_ptr)
        return list(codes)

    def read_names(self, offset, count):
        # One length per language, then one pointer per language, as the
        # data of a file record that differs by language.
        lengths, offset = self.words("<%dI" % count, offset)
        pointers, offset = self.words("<%dI" % count, offset)
        names = [self.string(length, pointer) for length, pointer in zip(lengths, pointers)]
        return names, offset

    def read_files(self):
        files = []
        offset = self.files_ptr
        for _ in range(self.files):
            (record, kind, details, src_len, src_ptr, dst_len, dst_ptr), offset = \
                self.words("<7I", offset)
            versions = self.languages if record == 1 else 1
            stored, offset = self.words("<%dI" % versions, offset)
            pointers, offset = self.words("<%dI" % versions, offset)
            originals, offset = self.words("<%dI" % versions, offset)
            (mime_len, mime_ptr), offset = self.words("<2I", offset)
            contents = []
            for length, pointer, original in zip(stored, pointers, originals):
                raw = self.piece(pointer, length)
                self.data_spans.append((pointer, length))
                if self.options & 0x0008 or kind == 4:
                    body = raw
                else:
                    try:
                        body = zlib.decompress(raw)
                    except zlib.error as error:
                        raise Broken("file data does not decompress: %s" % error)
                if len(body) != original:
                    raise Broken("file data is %d bytes, record says %d" % (len(body), original))
                contents.append({"stored": length, "size": original,
                                 "raw": raw == body,
                                 "sha256": hashlib.sha256(body).hexdigest()})
            files.append({"record": record, "type": kind, "details": details,
                          "source": self.string(src_len, src_ptr),
                          "destination": self.string(dst_len, dst_ptr),
                          "mime": self.string(mime_len, mime_ptr) if mime_len else "",
                          "mime_pointer": mime_ptr,
                          "destination_end": dst_ptr + dst_len,
                          "data": contents})
        return files

    def read_requisites(self):
        requisites = []
        offset = self.requisites_ptr
        for _ in range(self.requisites):
            (uid, major, minor, variant), offset = self.words("<IHHI", offset)
            names, offset = self.read_names(offset, self.languages)
            requisites.append({"uid": uid, "major": major, "minor": minor,
                               "variant": variant, "names": names})
        return requisites

    def report(self):
        files = self.read_files()
        requisites = self.read_requisites()
        names, _ = self.read_names(self.name_ptr, self.languages)
        string_ends = [p + n for p, n in self.string_spans if n]
        data_starts = [p for p, n in self.data_spans]
        return {
            "size": len(self.data),
            "uid1": self.uid1, "uid2": self.uid2, "uid3": self.uid3, "uid4": self.uid4,
            "uid4_ok": self.uid4 == self.uid4_expected(),
            "checksum": self.checksum,
            "checksum_ok": self.checksum == self.checksum_expected(),
            "drive": self.drive, "installer": self.installer,
            "options": self.options, "type": self.type,
            "version": [self.major, self.minor, self.variant],
            "capabilities": self.capabilities,
            "certificates_pointer": self.certificates_ptr,
            "signature_pointer": self.signature_ptr,
            "installed_space": self.installed_space,
            "max_installed_space": self.max_space,
            "languages": self.read_languages(),
            "names": names,
            "requisites": requisites,
            "files": files,
            "last_string_end": max(string_ends, default=0),
            "first_data_start": min(data_starts, default=len(self.data)),
        }


def main():
    if len(sys.argv) != 2:
        sys.stderr.write("usage: sis_reader.py FILE.SIS\n")
        return 2
    with open(sys.argv[1], "rb") as stream:
        data = stream.read()
    try:
        report = Package(data).report()
    except (Broken, struct.error, UnicodeDecodeError) as error:
        sys.stderr.write("broken package: %s\n" % error)
        return 1
    json.dump(report, sys.stdout, indent=1)
    sys.stdout.write("\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
