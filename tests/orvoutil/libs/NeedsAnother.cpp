extern "C" void mitgebracht();

extern "C" __attribute__((visibility("default"))) const void* ort_des_mitgebrachten() {
    return reinterpret_cast<const void*>(&mitgebracht);
}
