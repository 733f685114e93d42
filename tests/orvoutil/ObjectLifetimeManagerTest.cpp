#include <orvoutil/ObjectLifetimeManager.h>

#include <orvoutil/SharedLib.h>

#include "libs/Gemeinsames.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <vector>

using orvo::orvoutil::ObjectLifetimeManager;
using orvo::orvoutil::SharedLib;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::IsEmpty;

namespace {

ObjectLifetimeManager& manager() { return ObjectLifetimeManager::instance(); }

/// Calls a function when it is destroyed.
struct Objekt {
    explicit Objekt(std::function<void()> t = {}) : beimAbbau(std::move(t)) {}
    Objekt(const Objekt&) = delete;
    Objekt& operator=(const Objekt&) = delete;
    ~Objekt() {
        if (beimAbbau)
            beimAbbau();
    }
    std::function<void()> beimAbbau;
};

struct Anderes {};

/// Why the object is not taken; empty when it is.
std::string grundDerAblehnung(const std::string& name, Objekt* objekt) {
    try {
        manager().addObject(name, objekt);
        return "";
    } catch (const std::logic_error& ablehnung) {
        return ablehnung.what();
    }
}

struct ObjectLifetimeManagerTest : testing::Test {
    ~ObjectLifetimeManagerTest() override { manager().destroyAll(); }

    void lege(const std::string& name) {
        manager().addObject(name, new Objekt([this, name] { protokoll.push_back(name); }));
    }

    std::vector<std::string> protokoll;
};

/// Made before `main`, so destroyed after the process's objects.
struct GanzAmEnde {
    ~GanzAmEnde() {
        if (tue)
            tue();
    }
    void (*tue)() = nullptr;
} ganzAmEnde;

void sage(const char* text) { std::fprintf(stderr, "%s.", text); }

} // namespace

TEST_F(ObjectLifetimeManagerTest, FindsWhatWasRegistered) {
    auto* const objekt = new Objekt;
    manager().addObject("name", objekt);
    EXPECT_EQ(manager().getObject<Objekt>("name"), objekt);
    EXPECT_EQ(manager().getObject<Objekt>("Name"), nullptr);
    EXPECT_EQ(manager().getObject<Objekt>(""), nullptr);
    EXPECT_EQ(manager().getObject<Anderes>("name"), nullptr);
}

TEST_F(ObjectLifetimeManagerTest, TellsNamesApartToTheLastByte) {
    manager().addObject(std::string("a\0b", 3), new Objekt);
    EXPECT_EQ(manager().getObject<Objekt>("a"), nullptr);
    EXPECT_NE(manager().getObject<Objekt>(std::string("a\0b", 3)), nullptr);
}

TEST_F(ObjectLifetimeManagerTest, FindsByTheTypeOfRegistrationOnly) {
    struct Basis {
        virtual ~Basis() = default;
    };
    struct Abgeleitet : Basis {};
    manager().addObject<Basis>("basis", new Abgeleitet);
    EXPECT_NE(manager().getObject<Basis>("basis"), nullptr);
    EXPECT_EQ(manager().getObject<Abgeleitet>("basis"), nullptr);
}

TEST_F(ObjectLifetimeManagerTest, FindsForALibraryWithARecordOfTheTypeOfItsOwn) {
    SharedLib lib(FINDS_AN_OBJECT, true);
    const auto findet = reinterpret_cast<const void* (*)(const char*)>(lib.getSymbol("finde_gemeinsames"));
    ASSERT_NE(findet, nullptr) << lib.getLastError();
    auto* const objekt = new Gemeinsames;
    manager().addObject("gemeinsames", objekt);
    EXPECT_EQ(findet("gemeinsames"), objekt);
    lege("anderes");
    EXPECT_EQ(findet("anderes"), nullptr);
}

TEST_F(ObjectLifetimeManagerTest, RefusesANameInUse) {
    lege("name");
    auto zweites = std::make_unique<Objekt>();
    EXPECT_EQ(grundDerAblehnung("name", zweites.get()), "ObjectLifetimeManager: Name schon vergeben: name");
    auto anderes = std::make_unique<Anderes>();
    EXPECT_THROW(manager().addObject("name", anderes.get()), std::logic_error);
    EXPECT_NE(manager().getObject<Objekt>("name"), zweites.get());
}

TEST_F(ObjectLifetimeManagerTest, APlaceDestroysTheObjectThatItRefuses) {
    ObjectLifetimeManager::Platz platz("name");
    lege("name");
    bool zerstoert = false;
    const auto zerstoere = [](void* objekt) noexcept { delete static_cast<Objekt*>(objekt); };
    EXPECT_THROW(platz.besetze(std::make_unique<Objekt>([&] { zerstoert = true; }), zerstoere),
                 std::logic_error);
    EXPECT_TRUE(zerstoert);
}

TEST_F(ObjectLifetimeManagerTest, RefusesNull) {
    EXPECT_THROW(manager().addObject<Objekt>("name", nullptr), std::invalid_argument);
    EXPECT_EQ(grundDerAblehnung("name", nullptr), "ObjectLifetimeManager: kein Objekt: name");
    EXPECT_EQ(manager().getObject<Objekt>("name"), nullptr);
    EXPECT_NO_THROW(lege("name"));
}

TEST_F(ObjectLifetimeManagerTest, DestroysInReverseOrderOfRegistration) {
    for (const char* const name : {"b", "a", "c"})
        lege(name);
    manager().destroyAll();
    EXPECT_THAT(protokoll, ElementsAre("c", "a", "b"));
}

TEST_F(ObjectLifetimeManagerTest, StartsAnewAfterwards) {
    lege("a");
    manager().destroyAll();
    EXPECT_EQ(manager().getObject<Objekt>("a"), nullptr);
    EXPECT_FALSE(manager().wirdAbgebaut());
    lege("a");
    EXPECT_NE(manager().getObject<Objekt>("a"), nullptr);
    manager().destroyAll();
    manager().destroyAll();
    EXPECT_THAT(protokoll, ElementsAre("a", "a"));
}

TEST_F(ObjectLifetimeManagerTest, FindsAnObjectUntilItsDestructorHasReturned) {
    Objekt* gefunden = nullptr;
    Objekt* aelteres = nullptr;
    Objekt* juengeres = nullptr;
    lege("aelter");
    auto* const objekt = new Objekt([&] {
        gefunden = manager().getObject<Objekt>("name");
        aelteres = manager().getObject<Objekt>("aelter");
        juengeres = manager().getObject<Objekt>("juenger");
    });
    manager().addObject("name", objekt);
    lege("juenger");
    manager().destroyAll();
    EXPECT_EQ(gefunden, objekt);
    EXPECT_NE(aelteres, nullptr);
    EXPECT_EQ(juengeres, nullptr);
    EXPECT_EQ(manager().getObject<Objekt>("name"), nullptr);
}

TEST_F(ObjectLifetimeManagerTest, RefusesNewObjectsWhileItDestroys) {
    std::string grund;
    bool imAbbau = false;
    manager().addObject("name", new Objekt([&] {
                            imAbbau = manager().wirdAbgebaut();
                            grund = grundDerAblehnung("neu", std::make_unique<Objekt>().get());
                        }));
    EXPECT_FALSE(manager().wirdAbgebaut());
    manager().destroyAll();
    EXPECT_EQ(grund, "ObjectLifetimeManager: wird abgebaut: neu");
    EXPECT_TRUE(imAbbau);
    EXPECT_FALSE(manager().wirdAbgebaut());
}

TEST_F(ObjectLifetimeManagerTest, IgnoresARequestToDestroyThatADestructorMakes) {
    lege("a");
    manager().addObject("b", new Objekt([&] {
                            manager().destroyAll();
                            protokoll.push_back("b");
                        }));
    manager().destroyAll();
    EXPECT_THAT(protokoll, ElementsAre("b", "a"));
}

TEST_F(ObjectLifetimeManagerTest, DestroysAtProcessEnd) {
    EXPECT_EXIT(
        {
            manager().addObject("a", new Objekt([] { sage(manager().wirdAbgebaut() ? "a" : "falsch"); }));
            manager().addObject("b",
                                new Objekt([] { sage(manager().getObject<Objekt>("a") ? "b" : "falsch"); }));
            std::exit(0);
        },
        ExitedWithCode(0), "^b\\.a\\.$");
}

TEST_F(ObjectLifetimeManagerTest, AnswersToTheVeryEndAndTakesNothingNew) {
    EXPECT_EXIT(
        {
            manager().addObject("a", new Objekt([] { sage("a"); }));
            ganzAmEnde.tue = [] {
                sage(manager().getObject<Objekt>("a") ? "noch da" : "fort");
                sage(manager().wirdAbgebaut() ? "abgebaut" : "falsch");
                Objekt neues;
                try {
                    manager().addObject("neu", &neues);
                } catch (const std::logic_error&) {
                    sage("abgelehnt");
                }
                manager().destroyAll();
            };
            std::exit(0);
        },
        ExitedWithCode(0), "^a\\.fort\\.abgebaut\\.abgelehnt\\.$");
}

TEST_F(ObjectLifetimeManagerTest, DestroysOnceWhenTheProcessEndsInADestructor) {
    EXPECT_EXIT(
        {
            manager().addObject("a", new Objekt([] { sage("a"); }));
            manager().addObject("b", new Objekt([] {
                                    sage("b");
                                    std::exit(0);
                                }));
            manager().destroyAll();
        },
        ExitedWithCode(0), "^b\\.$");
}

TEST_F(ObjectLifetimeManagerTest, ServesSeveralThreadsAtOnce) {
    constexpr int kRunden = 200;
    std::atomic<int> zerstoert = 0;
    std::atomic<int> gewonnen = 0;
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 3; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < kRunden; ++i) {
                    const std::string name = "objekt" + std::to_string(i);
                    auto objekt = std::make_unique<Objekt>();
                    Objekt* const roh = objekt.get();
                    try {
                        manager().addObject(name, roh);
                        objekt.release()->beimAbbau = [&] { ++zerstoert; };
                        ++gewonnen;
                    } catch (const std::logic_error&) {
                    }
                    EXPECT_NE(manager().getObject<Objekt>(name), nullptr);
                    EXPECT_FALSE(manager().wirdAbgebaut());
                }
            });
    }
    EXPECT_EQ(gewonnen, kRunden);
    manager().destroyAll();
    EXPECT_EQ(zerstoert, kRunden);
}

TEST_F(ObjectLifetimeManagerTest, DoesNotDeadlockWhenADestructorWaitsForAThreadThatAsks) {
    Objekt* gefunden = nullptr;
    manager().addObject("a", new Objekt([&] {
                            std::jthread([&] {
                                gefunden = manager().getObject<Objekt>("a");
                                manager().destroyAll();
                            }).join();
                        }));
    manager().destroyAll();
    EXPECT_NE(gefunden, nullptr);
}
