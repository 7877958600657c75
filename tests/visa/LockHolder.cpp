// Tells its process, opens the instrument exclusively and stays until it is ended: the peer sees it
// connect.
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <thread>

#include "platform/os/Module.h"
#include "visa/Visa.h"

int main(int argc, char** argv) {
  os::Module module;
  if (argc != 2 || !module.Load(ZK_VISA_MODULE)) return 2;
  std::cout << getpid() << std::flush;
  ViSession manager = 0;
  ViSession session = 0;
  module.FunctionOf<decltype(viOpenDefaultRM)>("viOpenDefaultRM")(&manager);
  if (module.FunctionOf<decltype(viOpen)>("viOpen")(manager, argv[1], VI_EXCLUSIVE_LOCK, 5000,
                                                    &session) != VI_SUCCESS) {
    return 1;
  }
  std::this_thread::sleep_for(std::chrono::minutes(5));
  return 0;
}
