// Which containers keys of a capture may go into.

#ifndef ZT_TESTS_TOOLS_INPUT_ORDERED_H
#define ZT_TESTS_TOOLS_INPUT_ORDERED_H

namespace replay::testing {

/// A container that finds keys by comparing them. Whoever knows a hash function that has no secret can choose keys that share
/// one bucket; no choice of keys spoils an order.
template <typename Container>
concept IsOrdered = requires {
  typename Container::key_compare;
}
&&!requires { typename Container::hasher; };

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_INPUT_ORDERED_H
