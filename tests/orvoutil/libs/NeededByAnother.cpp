extern "C" __attribute__((visibility("default"))) void mitgebracht() {}
