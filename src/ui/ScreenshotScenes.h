#pragma once

class AppLauncher;

// Pictures of the program for its documentation. When the environment names a
// scene (VELMORA_SCREENSHOT_SCENE) and a target file (VELMORA_SCREENSHOT_FILE),
// the program sets the scene up as a user would, saves a picture of the screen
// around it and ends. VELMORA_SCREENSHOT_MEDIA may list files (separated by
// ':') that are dropped on the list first. Without these variables nothing
// changes. Known scenes: splash, newlist, main, maindark (a dark
// palette), contextmenu, marks (rows marked, a mark's tool tip shown).
void PrepareScreenshotScene(AppLauncher& launcher);
