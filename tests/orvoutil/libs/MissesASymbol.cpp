extern "C" void gibt_es_nirgends();

extern "C" __attribute__((visibility("default"))) void ruft_was_fehlt() { gibt_es_nirgends(); }
