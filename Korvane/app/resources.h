#pragma once

// Numbers of the program's own resources (korvane.rc). Other libraries embed theirs under names of their own.

#define resource_program_icon 1
