"""Reads a record storage as docs/file-formats.md describes it, and prints its records.

Usage: read_storage.py DATA-FILE. One line per record, in the order of the data file: key and data in
hexadecimal. Exits with 1 when index file and data file do not tell the same.
"""
import struct
import sys
import zlib


def data_file_records(path):
    with open(path, "rb") as file:
        content = file.read(284)
        assert content[:12] == b"\xff\0DAT0\0\0" + b"0100", "not a data file"
        storage_id, key_type, key_length, length = struct.unpack_from("<I4xHHQ", content, 12)
        assert key_type in (0x44, 0x53), "unknown keys"
        body = file.read(length)
    records, at = [], 0
    while at < length:
        start, state, size, crc = struct.unpack_from("<BBII", body, at)
        assert start == 0xFF and state in (0x11, 0x22) and size >= key_length + 14
        assert body[at + size - 2:at + size] == b"\0\xff", "no end mark"
        key = body[at + 10:at + 10 + key_length]
        data = body[at + 12 + key_length:at + size - 2]
        if state == 0x11:
            assert zlib.crc32(data) == crc, "wrong checksum"
            records.append((at, size, crc, key, data))
        at += size
    return storage_id, key_length, records


def clusters(path, storage_id, key_length):
    with open(path, "rb") as file:
        content = file.read()
    assert content[:12] == b"\xfb\0ARRAY\0" + b"0100", "not an array file"
    array_id, unit, used = struct.unpack_from("<Ii4xI", content, 12)
    assert array_id == storage_id and unit == key_length + 18 and used + 32 <= len(content)
    found = set()
    for at in range(32, 32 + used, unit):
        crc, offset, size = struct.unpack_from("<IQI", content, at + key_length + 2)
        if size != 0:
            found.add((offset, size, crc, content[at:at + key_length]))
    return found


def main():
    path = sys.argv[1]
    storage_id, key_length, records = data_file_records(path)
    named = clusters(path[:path.rindex(".")] + ".pdx", storage_id, key_length)
    for record in records:
        print(record[3].hex(), record[4].hex())
    sys.exit(0 if named == {record[:4] for record in records} else 1)


main()
