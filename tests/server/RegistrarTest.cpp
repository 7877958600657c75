// The registrar: what scripts make of the registry, in both directions.
#include "server/Registrar.h"

#include <tuple>

#include "tests/platform/RegistryFixture.h"
#include "tests/server/ClassesDump.h"

using namespace server;

namespace {

using Lines = ClassesLines;

/// The lines of a script's own keys, all of which begin with "Zk".
Lines ZkLines(RegistrationScope scope = RegistrationScope::kUser) {
  Lines lines = DumpClasses(scope);
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Zk"); });
  return lines;
}

class RegistrarTest : public RegistryTest {
 protected:
  RegistrarTest() { Clean(); }
  ~RegistrarTest() override { Clean(); }

  static void Clean() { RegDeleteTreeW(HKEY_CURRENT_USER, OLESTR("Software\\Classes\\Zk")); }

  const Registrar registrar_{RegistrationScope::kUser, {{"NAME", OLESTR("n")}}};
};

TEST_F(RegistrarTest, MakesKeysAndValuesAndTakesThemAway) {
  constexpr auto kScript =
      "HKCR { NoRemove Zk { val A = s '1' ForceRemove F = s 'f' { G } P = s '%NAME%' { Q = s 'q' } "
      "} }";
  EXPECT_EQ(registrar_.Register(kScript), S_OK);
  EXPECT_EQ(registrar_.Register(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk A=1", "Zk\\F", "Zk\\F =f", "Zk\\F\\G", "Zk\\P", "Zk\\P =n",
                              "Zk\\P\\Q", "Zk\\P\\Q =q"}));
  EXPECT_EQ(registrar_.Remove(kScript), S_OK);
  EXPECT_EQ(ZkLines(), Lines{"Zk"});
  EXPECT_EQ(registrar_.Remove(kScript), S_OK);
}

TEST_F(RegistrarTest, RemovingWhatIsNotThereMakesNothing) {
  EXPECT_EQ(registrar_.Remove("HKCR { NoRemove Zk { A { val B = s '1' } } }"), S_OK);
  EXPECT_EQ(ZkLines(), Lines{});
}

TEST_F(RegistrarTest, OnlyForcedRemovalTakesWhatOthersPutThere) {
  constexpr auto kScript = "HKCR { NoRemove Zk { ForceRemove F = s 'f' P = s 'p' { Q } } }";
  EXPECT_EQ(registrar_.Register(kScript), S_OK);
  { const Key others(HKEY_CURRENT_USER, OLESTR("Software\\Classes\\Zk\\F\\Others\\X")); }
  { const Key others(HKEY_CURRENT_USER, OLESTR("Software\\Classes\\Zk\\P\\Others\\X")); }
  EXPECT_EQ(registrar_.Register(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\F", "Zk\\F =f", "Zk\\P", "Zk\\P =p", "Zk\\P\\Q",
                              "Zk\\P\\Others", "Zk\\P\\Others\\X"}));
  { const Key others(HKEY_CURRENT_USER, OLESTR("Software\\Classes\\Zk\\F\\Others\\X")); }
  EXPECT_EQ(registrar_.Remove(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\P", "Zk\\P\\Others", "Zk\\P\\Others\\X"}));
}

TEST_F(RegistrarTest, DeletingTakesAwayWhatFormerVersionsLeft) {
  constexpr auto kScript = "HKCR { NoRemove Zk { Delete Old N } }";
  EXPECT_EQ(registrar_.Register("HKCR { Zk { Old { X } } }"), S_OK);
  EXPECT_EQ(registrar_.Register(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\N"}));
  EXPECT_EQ(registrar_.Register("HKCR { Zk { Old } }"), S_OK);
  EXPECT_EQ(registrar_.Remove(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\Old"}));
}

TEST_F(RegistrarTest, NumbersNeedARegistryThatHoldsThem) {
  const HRESULT result = registrar_.Register("HKCR { Zk { val N = d '7' } }");
#ifdef _WIN32
  EXPECT_EQ(result, S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk N=4:07 00 00 00"}));
#else
  EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));
#endif
}

TEST_F(RegistrarTest, BadScriptChangesNothing) {
  constexpr auto kScript = "HKCR { Zk { A } } HKCR { Zk { B = s %NOTHING% } }";
  EXPECT_EQ(registrar_.Register(kScript), HRESULT_FROM_WIN32(11)) << "a bad format";
  EXPECT_EQ(registrar_.Remove(kScript), Registrar::kScriptUnreadable);
  EXPECT_EQ(registrar_.Register({}), Registrar::kScriptUnreadable);
  EXPECT_EQ(ZkLines(), Lines{});
}

TEST_F(RegistrarTest, MachinesKeysStayInTheMachinesPartBesideAUsersKey) {
  const Registrar machine(RegistrationScope::kMachine, {});
  constexpr auto kScript = "HKCR { Zk { M } }";
  EXPECT_EQ(registrar_.Register("HKCR { Zk { U } }"), S_OK);
  EXPECT_EQ(machine.Register(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\U"}));
  EXPECT_EQ(ZkLines(RegistrationScope::kMachine), (Lines{"Zk", "Zk\\M"}));
  EXPECT_EQ(machine.Remove(kScript), S_OK);
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\U"}));
  EXPECT_EQ(ZkLines(RegistrationScope::kMachine), Lines{});
}

TEST_F(RegistrarTest, OtherRootsAreTheSameInEveryScope) {
  const Registrar machine(RegistrationScope::kMachine, {});
  for (const auto& [root, scope, registrar] :
       {std::tuple("HKCU", RegistrationScope::kUser, machine),
        std::tuple("HKLM", RegistrationScope::kMachine, registrar_)}) {
    const std::string script =
        std::string(root) + " { NoRemove Software { NoRemove Classes { Zk { R } } } }";
    EXPECT_EQ(registrar.Register(script), S_OK);
    EXPECT_EQ(ZkLines(scope), (Lines{"Zk", "Zk\\R"}));
    EXPECT_EQ(registrar.Remove(script), S_OK);
    EXPECT_EQ(ZkLines(scope), Lines{});
  }
}

TEST_F(RegistrarTest, StopsAtTheFirstFailureOfTheRegistry) {
#ifdef _WIN32
  const std::string refused_name(300, 'k');
#else
  const std::string refused_name = "'k\nk'";
#endif
  EXPECT_EQ(registrar_.Register("HKCR { Zk { A { " + refused_name + " } B } } HKCR { Zk { C } }"),
            HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(ZkLines(), (Lines{"Zk", "Zk\\A"}));
}

#ifndef _WIN32
TEST_F(RegistrarTest, KeyThatCannotBeRemovedIsTold) {
  EXPECT_EQ(registrar_.Register("HKCR { Zk }"), S_OK);
  std::filesystem::create_directory(File().string() + ".new");  // nothing can be written any more
  EXPECT_EQ(registrar_.Remove("HKCR { Zk }"), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
}
#endif

}  // namespace
