#pragma once

struct CliContext;

// velmora-cli info: each file's cells as a list of its type would show them,
// by column name, and what the join check reads of it; as text or as one
// JSON document. Returns the exit status: 0, or 2 when a file cannot be read
// or its type cannot be told.
int RunInfo(CliContext& cli);
