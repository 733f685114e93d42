#include <orvoplugin/service/DatensatzReaderService.h>
#include <orvoplugin/service/IXPathMappingService.h>
#include <orvoplugin/service/Service.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using orvo::service::DatensatzReaderService;
using orvo::service::IXPathMappingService;

/// A service that counts its deletion.
template <class Schnittstelle>
class Zaehlender : public Schnittstelle {
public:
    explicit Zaehlender(int& geloescht) : geloescht_(geloescht) {}
    ~Zaehlender() override { ++geloescht_; }

private:
    int& geloescht_;
};

template <class Schnittstelle>
class ServiceSchnittstelle : public testing::Test {};

using Schnittstellen = testing::Types<Service, IXPathMappingService, DatensatzReaderService>;
TYPED_TEST_SUITE(ServiceSchnittstelle, Schnittstellen);

TYPED_TEST(ServiceSchnittstelle, IsDeletedThroughTheCommonBase) {
    int geloescht = 0;
    std::unique_ptr<Service> service = std::make_unique<Zaehlender<TypeParam>>(geloescht);
    service.reset();
    EXPECT_EQ(geloescht, 1);
}

TYPED_TEST(ServiceSchnittstelle, IsToldApartFromTheOthersAtRunTime) {
    const std::unique_ptr<Service> service = std::make_unique<TypeParam>();
    EXPECT_NE(dynamic_cast<TypeParam*>(service.get()), nullptr);
    EXPECT_EQ(dynamic_cast<IXPathMappingService*>(service.get()) != nullptr,
              (std::is_same_v<TypeParam, IXPathMappingService>));
    EXPECT_EQ(dynamic_cast<DatensatzReaderService*>(service.get()) != nullptr,
              (std::is_same_v<TypeParam, DatensatzReaderService>));
}

} // namespace
