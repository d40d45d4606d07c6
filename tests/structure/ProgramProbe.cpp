// A small program for the structure checker's own tests, built twice: plain,
// and with VELMORA_PROBE_SCENE, which adds a function named like a screenshot
// scene. The checker then has a program of each kind to read with nm.
#ifdef VELMORA_PROBE_SCENE
void PrepareScreenshotScene();
void PrepareScreenshotScene() {}
#endif

int main() {
#ifdef VELMORA_PROBE_SCENE
    PrepareScreenshotScene();
#endif
    return 0;
}
