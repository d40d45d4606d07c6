# Prints what python3-mutagen reads of an MP3 file's ID3v2 tag, as JSON:
# the tag's version, the ids of its frames, the text frames, the pictures
# (type, MIME type and an MD5 of their bytes), the comments (language,
# description, texts), the text encodings (0
# ISO-8859-1, 1 UTF-16 with BOM), the chapters (element id, times, title) and the chapter ids reachable from the top-level table of
# contents, in its order.
#
#   /usr/bin/python3 read_tag_with_mutagen.py FILE
import hashlib
import json
import sys

from mutagen.id3 import CTOCFlags, ID3, ID3NoHeaderError


def reachable(tables, element_id, seen):
    if element_id in seen:
        return []
    seen.add(element_id)
    table = tables.get(element_id)
    if table is None:
        return [element_id]
    ids = []
    for child in table.child_element_ids:
        ids += reachable(tables, child, seen)
    return ids


def main(path):
    try:
        tag = ID3(path, translate=False, v2_version=3)
    except ID3NoHeaderError:
        print(json.dumps({"version": None}))
        return
    tables = {frame.element_id: frame for frame in tag.getall("CTOC")}
    tops = [frame for frame in tables.values() if frame.flags & CTOCFlags.TOP_LEVEL]
    result = {
        "version": "2.%d" % tag.version[1],
        "frames": sorted(tag.keys()),
        "texts": {key: [str(text) for text in frame.text]
                  for key, frame in tag.items() if key[0] == "T" and key != "TXXX"},
        "encodings": {key: int(frame.encoding)
                      for key, frame in tag.items() if key[0] == "T" and key != "TXXX"},
        "pictures": [{"type": int(frame.type), "mime": frame.mime,
                      "md5": hashlib.md5(frame.data).hexdigest()}
                     for frame in tag.getall("APIC")],
        "comments": [{"lang": frame.lang, "desc": frame.desc,
                      "text": [str(text) for text in frame.text]}
                     for frame in tag.getall("COMM")],
        "chapters": [{"id": frame.element_id, "start": frame.start_time,
                      "end": frame.end_time,
                      "title": str(frame.sub_frames["TIT2"].text[0])
                      if "TIT2" in frame.sub_frames else None,
                      "encoding": int(frame.sub_frames["TIT2"].encoding)
                      if "TIT2" in frame.sub_frames else None}
                     for frame in tag.getall("CHAP")],
        "topLevelTables": len(tops),
        "topLevelOrdered": bool(tops and tops[0].flags & CTOCFlags.ORDERED),
        "reachable": reachable(tables, tops[0].element_id, set()) if tops else [],
    }
    print(json.dumps(result))


main(sys.argv[1])
