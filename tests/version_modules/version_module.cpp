// A module that carries nothing but its resources.
extern "C" int zq_version_module_marker() {
    return 1;
}
