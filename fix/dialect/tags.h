#pragma once

// The tags of messages and the fields of our own, as docs/fix.md explains them.
namespace tutti::tag {

inline constexpr int account = 1, average_price = 6, id = 11, filled_all = 14, currency = 15, execution = 17,
                     last_price = 31, last_quantity = 32, order = 37, quantity = 38, order_status = 39,
                     order_type = 40, original_id = 41, price = 44, reference_sequence = 45, side = 54,
                     symbol = 55, text = 58, transact_time = 60, valid_until = 62, position_effect = 77,
                     stop_price = 99, cancel_reason = 102, reject_reason = 103, security_desc = 107,
                     quote = 117, bid = 132, offer = 133, symbols = 146, exec_type = 150, left = 151,
                     contract_size = 231, market_request = 262, subscription = 263, depth = 264,
                     update_type = 265, entry_types = 267, entries = 268, entry_type = 269, entry_price = 270,
                     market_reason = 281, security_request = 320, security_response = 322, unsolicited = 325,
                     reference_type = 372, business_reference = 379, business_reason = 380,
                     symbol_count = 393, answers_to = 434, username = 553, password = 554, list_type = 559,
                     list_result = 560, mass_request = 584, mass_type = 585, quote_response = 693,
                     quote_answer = 694, position_list = 702, position_type = 703, long_quantity = 704,
                     short_quantity = 705, position_request = 710, position = 721,
                     position_request_type = 724, position_count = 727, position_result = 728,
                     position_status = 729, settle_price = 730, last_fragment = 893, free_margin = 899,
                     equity = 900, balance = 901, collateral_report = 908, collateral_inquiry = 909,
                     collateral_status = 910, report_count = 911, last_report = 912;

// Our own.
inline constexpr int dialect = 20000, era = 20001, carried = 20002, digits = 20003, limit_distance = 20004,
                     stop_distance = 20005, margin_rate = 20006, base_currency = 20007, stop_loss = 20010,
                     take_profit = 20011, answer = 20012, result = 20013, request_code = 20015,
                     request_state = 20016, executed_lots = 20017, order_kind = 20018, gone = 20019,
                     commission = 20020, interest = 20021, position_profit = 20022, realised_profit = 20023,
                     realised_commission = 20024, current_price = 20025, operation = 20026,
                     floating_profit = 20030, credit = 20031, used_margin = 20032, margin_level = 20033,
                     leverage = 20034, holder = 20035, owned = 20036, seconds_all = 20037,
                     smallest_lots = 20038, largest_lots = 20039, fills = 20040, closes = 20041,
                     complete = 20042, seconds_left = 20043;

}  // namespace tutti::tag
