// The fault: a header of the lower layer that is neither public, internal nor private.
#pragma once
