#pragma once

class AppLauncher;

// Pictures of the program for its documentation, taken by the program's
// double velmora_screenshots (built for scripts/screenshots.sh, never
// installed): the program itself knows nothing of them. When the environment
// names a scene (VELMORA_SCREENSHOT_SCENE) and a target file
// (VELMORA_SCREENSHOT_FILE), the scene is set up as a user would, a picture of
// the screen around it is saved and the program ends. VELMORA_SCREENSHOT_MEDIA may list files
// (separated by
// ':') that are dropped on the list first. Without these variables nothing
// changes. Known scenes: splash, newlist, main, maindark (a dark
// palette), contextmenu, marks (rows marked, a mark's tool tip shown).
void PrepareScreenshotScene(AppLauncher& launcher);
