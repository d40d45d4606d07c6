#pragma once

struct CliContext;

// velmora-cli check: the list that the sources make, its grade with the text
// the status box gives, and each row that differs from the first with its
// reasons; as text or as one JSON document. Returns the exit status: 0 Green,
// 1 Orange, 3 Red, 2 when the sources make no list.
int RunCheck(CliContext& cli);
