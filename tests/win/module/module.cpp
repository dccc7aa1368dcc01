// A module that remembers how its library entry was called.
extern "C" {
__attribute__((visibility("default"))) void* attachedInstance = nullptr;
__attribute__((visibility("default"))) int attachCount = 0;

__attribute__((visibility("default"))) int DllMain(void* instance, unsigned reason, void*) {
    if (reason == 1) {
        attachedInstance = instance;
        ++attachCount;
    }
    return 1;
}

__attribute__((visibility("default"))) int acrxEntryPoint(int, void*) {
    return 0;
}
}
