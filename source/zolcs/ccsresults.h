// Results of the operations that return an int. Each operation says which of them it gives and what they leave.
#pragma once

inline constexpr int CCS_DONE = 255;   ///< the operation was carried out
inline constexpr int CCS_FAILED = 0;   ///< refused or failed
inline constexpr int CCS_MISSING = 1;  ///< memory is exhausted, or a table that the operation needs does not exist
inline constexpr int CCS_INVALID = 2;  ///< a frame that is not initialised, images that do not fit a grey map, or an
                                       ///< argument that is none of its named values
