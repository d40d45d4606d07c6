#pragma once

#include <string>

// The MP3 fix of a join: one pass from the raw join of MP3 files to the
// output. The output holds only the Layer III audio frames of the input, in
// order, behind one new header frame ("Info" when every frame has the header
// frame's bit rate, "Xing" otherwise) that counts every frame and byte, holds
// a seek table, and, where the files had one, a LAME extension with the first
// file's encoder delay and the last file's padding. Every tag, every file's own
// header frame and everything else between the frames is left out.
//
// The output is written as the input is read, so it grows while the fix runs,
// and the header frame, written first with empty counts, is filled in at the
// end. When the fix fails the output is removed (or never made).
namespace Mp3Fixer {

enum Status {
    Fixed = 0,
    UsageError = 1,
    UnreadableInput = 2,
    NoAudioFrame = 3,
    WriteError = 4,
    MixedFreeFormat = 5,
};

// Fixes input into output; on failure error holds one line that says why:
// the file the failure is on, ": ", and the reason.
Status FixFile(const std::string& input, const std::string& output, std::string& error);

// The same, with one ID3v2.3 tag in front of the audio (see JoinedTag) made
// from the sources that the file sourcesFile lists (see JoinSources): where
// each source lies in input, so its tags are read from there, and which
// chapter each audio frame belongs to. The tag's length is fixed before the
// audio is written and its chapter times are filled in at the end. A sources
// file that cannot be read, or whose lengths do not add up to the input's,
// gives a tag without chapters, taken from the tag at the input's start; then
// warning holds one line that says why. An empty sourcesFile is FixFile above.
//
// Where the sources are known, no source goes missing from the output: the
// fix fails on the first source of which no audio frame can be read (a file
// that is no MPEG audio, or not Layer III, or free format whose frame length
// cannot be found), and error names that source by the path the sources file
// gives.
//
// Free-format frames (whose length is the distance between two headers) are
// joined as any others, of one length only: a reader learns that length once
// in a stream, so a second free-format length ends the fix, naming the source
// that has it (or the input, where the sources are not known).
Status FixFile(const std::string& input, const std::string& output, const std::string& sourcesFile,
               std::string& error, std::string& warning);

// WithoutTag: the sources are only checked, as above; the output has no tag.
enum TagMode { WithTag, WithoutTag };
Status FixFile(const std::string& input, const std::string& output, const std::string& sourcesFile,
               TagMode tagMode, std::string& error, std::string& warning);

}  // namespace Mp3Fixer
