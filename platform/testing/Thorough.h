// How much the longest loops of the tests take on: the usual run leaves places of them out, the one
// that ./test full starts leaves out none.
#pragma once

namespace tavrix::testing
{

/// Whether TAVRIX_TESTS_THOROUGH is set.
bool AreTestsThorough();

/// Of places counted from 1 the one to try after `place`: the next one up to the 32nd, then one a
/// sixteenth farther on. Where tests are thorough always the next one.
unsigned NextPlace(unsigned place);

} // namespace tavrix::testing
