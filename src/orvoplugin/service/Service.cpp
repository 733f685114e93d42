#include <orvoplugin/service/Service.h>

Service::~Service() = default;
