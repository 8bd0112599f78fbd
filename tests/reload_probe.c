/* SPDX-License-Identifier: Apache-2.0 */
/* Loads the library named by its argument as a plug-in, uses it, and unloads it; twice. */
#include <dlfcn.h>
#include <stdio.h>

typedef int (*gesture_function)(void);

static int use(const char* path) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  /* POSIX's way to turn an object pointer into a function pointer, which C itself does not have. */
  gesture_function initialize = NULL;
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  *(void**)&initialize = dlsym(library, "gesture_recognition_initialize");
  printf("%d\n", initialize());
  return dlclose(library);
}

int main(int argc, char** argv) {
  return argc != 2 || use(argv[1]) != 0 || use(argv[1]) != 0;
}
