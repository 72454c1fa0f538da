// Linked into the programs of an AddressSanitizer build, with their symbols exported, so that this definition
// takes the place of the system's. The leak check runs at exit, when the GL driver's libraries would be unloaded
// already: their call stacks could not be named, and what they keep in static storage would look lost.

extern "C" __attribute__((visibility("default"))) int dlclose(void* /*library*/)
{
    return 0;
}
