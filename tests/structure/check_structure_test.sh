#!/bin/sh
# Tests of check_structure.sh itself: each case lays out a small source tree
# in a temporary folder, a clean one or one that breaks one rule in one way,
# runs the checker on it and expects its verdict: exit status 0 and nothing
# said for a clean tree, exit status 1 and the offending line (or name) on
# standard error for a broken one.
#
#   check_structure_test.sh CHECKER CASE [PLAIN_PROGRAM SCENE_PROGRAM]
#
# The cases of the "program" rule read two small programs built for them: one
# plain, one with a function named like a screenshot scene.
set -eu

checker=$1
case_name=$2
plain_program=${3:-}
scene_program=${4:-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tree=$work/tree

# put PATH: writes standard input to $tree/PATH.
put() {
    mkdir -p "$(dirname "$tree/$1")"
    cat >"$tree/$1"
}

# A tree that keeps every rule. Each rule's own exceptions are used in it, so
# that a rule that forgot them fails here: a number beside a cell name in the
# table of cell names, cell loops counting by number, settings read in the
# settings module, section names as object names, and includes of platform's
# own headers in platform.
clean_tree() {
    put src/media/CellNames.h <<'EOF'
namespace SharedCell {
enum : int { Filename, Filesize, DateModified, Filepath, Count };
}
inline constexpr int kFirstCell = 0;
EOF
    put src/list/ItemList.cpp <<'EOF'
#include "media/CellNames.h"
#include "platform/FileHelpers.h"
QString PathOf(const ItemList& items, int row) {
    return items.cellText(row, SharedCell::Filepath);
}
void ClearRow(ItemList& items, int row) {
    for (int cell = 0; cell < items.cellCount(); ++cell) {
        items.setCellText(row, cell, QString());
    }
}
EOF
    put src/app/Settings.cpp <<'EOF'
#include "app/IniFile.h"
bool ShowTips() {
    return ReadIniValue("Tips", "Show") == "1";
}
QString LastFolder() {
    return ReadIniValue("Commondialog", "Folder");
}
EOF
    put src/app/IniFile.cpp <<'EOF'
QString ReadIniValue(const QString& section, const QString& key);
EOF
    put src/ui/TipsWindow.cpp <<'EOF'
#include "app/Settings.h"
void TipsWindow::build() {
    setObjectName("Tips");
    show->setChecked(ShowTips());
}
EOF
    put src/platform/FileHelpers.cpp <<'EOF'
#include "platform/FileHelpers.h"
bool FileExists(const QString& path);
EOF
    put data/DefaultSettings.ini <<'EOF'
[Tips]
Show=1
EOF
}

# run RULE [ARGUMENTS...]: runs the checker on the tree; sets status and
# leaves what it said in $work/said.
run() {
    rule=$1
    shift
    status=0
    sh "$checker" "$rule" "$tree" "$@" 2>"$work/said" || status=$?
}

expect_pass() {
    if [ "$status" -ne 0 ] || [ -s "$work/said" ]; then
        echo "expected exit status 0 and nothing said; got $status:" >&2
        cat "$work/said" >&2
        exit 1
    fi
}

# expect_failure TEXT: exit status 1, and TEXT in what the checker said.
expect_failure() {
    if [ "$status" -ne 1 ]; then
        echo "expected exit status 1; got $status:" >&2
        cat "$work/said" >&2
        exit 1
    fi
    if ! grep -qF -- "$1" "$work/said"; then
        echo "expected the checker to name \"$1\"; it said:" >&2
        cat "$work/said" >&2
        exit 1
    fi
}

clean_tree
case $case_name in
Cells_CleanTree_Passes)
    run cells
    expect_pass
    ;;
Cells_CallWithACellNumber_Fails)
    put src/join/JoinScripts.cpp <<'EOF'
QString source = items.cellText(row, 3);
EOF
    run cells
    expect_failure 'src/join/JoinScripts.cpp:1:'
    ;;
Cells_CellsIndexedByNumber_Fails)
    put src/media/ItemCells.cpp <<'EOF'
void Fill(ItemCellTexts& cells) {
    cells[2] = QString();
}
EOF
    run cells
    expect_failure 'src/media/ItemCells.cpp:2:'
    ;;
Cells_CellVariableSetToNumber_Fails)
    put src/list/SortList.cpp <<'EOF'
const int sortCell = 7;
EOF
    run cells
    expect_failure 'src/list/SortList.cpp:1:'
    ;;
Cells_HeaderTakenByNumber_Fails)
    put src/ui/ListHeaderView.cpp <<'EOF'
const QString text = items.header(4);
EOF
    run cells
    expect_failure 'src/ui/ListHeaderView.cpp:1:'
    ;;
Cells_ModelIndexTakenByNumber_Fails)
    put src/list/MainModel.h <<'EOF'
QModelIndex at = items.index(row, 3);
EOF
    run cells
    expect_failure 'src/list/MainModel.h:1:'
    ;;
Settings_CleanTree_Passes)
    run settings
    expect_pass
    ;;
Settings_ReadOutsideTheModule_Fails)
    put src/join/StartJoin.cpp <<'EOF'
const QString folder = ReadIniValue("Join", "Folder");
EOF
    run settings
    expect_failure 'src/join/StartJoin.cpp:1:'
    ;;
Settings_SectionNamedOutsideTheModule_Fails)
    put src/list/AddFilesModule.cpp <<'EOF'
const char* const section = "Tips";
EOF
    run settings
    expect_failure 'src/list/AddFilesModule.cpp:1:'
    ;;
Settings_DefaultKeyUnnamedInTheModule_Fails)
    printf 'Delay=5\n' >>"$tree/data/DefaultSettings.ini"
    run settings
    expect_failure 'Delay'
    ;;
Platform_CleanTree_Passes)
    run platform
    expect_pass
    ;;
Platform_IncludeOfApp_Fails)
    put src/platform/Shell.cpp <<'EOF'
#include "platform/Shell.h"
#include "app/Settings.h"
EOF
    run platform
    expect_failure 'src/platform/Shell.cpp:2:'
    ;;
Program_PlainProgram_Passes)
    run program "$plain_program" "$scene_program"
    expect_pass
    ;;
Program_SceneInTheProgram_Fails)
    run program "$scene_program"
    expect_failure 'PrepareScreenshotScene'
    ;;
Program_ScenesProgramWithoutScenes_Fails)
    run program "$plain_program" "$plain_program"
    expect_failure 'no screenshot scenes found'
    ;;
*)
    echo "unknown case: $case_name" >&2
    exit 2
    ;;
esac
