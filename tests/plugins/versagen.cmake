# Plugins for the tests with failing calls. They make no calls of their own.
foreach(nummer 1 2 3 4)
    orvo_test_plugin(OffersSubcase${nummer} Nummeriert.cpp NUMMER=${nummer})
    target_sources(OffersSubcase${nummer} PRIVATE Platz.cpp)
endforeach()
