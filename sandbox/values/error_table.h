#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace sandbox {

/// What an error takes with it.
enum class Ends { Statement, Batch, Transaction };

struct MessageText {
  int number;
  int severity;
  int state;
  Ends ends;
  std::string_view text;  // "{}" for each argument
};

/// The server's errors, by their numbers.
inline constexpr std::array kMessages{
    MessageText{102, 15, 1, Ends::Batch, "Incorrect syntax near '{}'."},
    MessageText{103, 15, 4, Ends::Batch,
                "The identifier that starts with '{}' is too long. Maximum length is 128."},
    MessageText{104, 16, 1, Ends::Batch,
                "ORDER BY items must appear in the select list if the statement contains a UNION, "
                "INTERSECT or EXCEPT operator."},
    MessageText{105, 15, 1, Ends::Batch,
                "Unclosed quotation mark after the character string '{}'."},
    MessageText{107, 15, 1, Ends::Batch,
                "The column prefix '{}' does not match with a table name or alias name used in the "
                "query."},
    MessageText{108, 15, 1, Ends::Batch,
                "The ORDER BY position number {} is out of range of the number of items in the "
                "select list."},
    MessageText{
        109, 15, 1, Ends::Batch,
        "There are more columns in the INSERT statement than values specified in the VALUES "
        "clause. The number of values in the VALUES clause must match the number of columns "
        "specified in the INSERT statement."},
    MessageText{
        110, 15, 1, Ends::Batch,
        "There are fewer columns in the INSERT statement than values specified in the VALUES "
        "clause. The number of values in the VALUES clause must match the number of columns "
        "specified in the INSERT statement."},
    MessageText{113, 15, 1, Ends::Batch, "Missing end comment mark '*/'."},
    MessageText{116, 16, 1, Ends::Batch,
                "Only one expression can be specified in the select list when the subquery is not "
                "introduced with EXISTS."},
    MessageText{
        120, 15, 1, Ends::Batch,
        "The select list for the INSERT statement contains fewer items than the insert list. "
        "The number of SELECT values must match the number of INSERT columns."},
    MessageText{
        121, 15, 1, Ends::Batch,
        "The select list for the INSERT statement contains more items than the insert list. "
        "The number of SELECT values must match the number of INSERT columns."},
    MessageText{127, 15, 1, Ends::Batch, "A TOP N or FETCH rowcount value may not be negative."},
    MessageText{137, 15, 2, Ends::Batch, "Must declare the scalar variable \"{}\"."},
    MessageText{156, 15, 1, Ends::Batch, "Incorrect syntax near the keyword '{}'."},
    MessageText{174, 15, 1, Ends::Batch, "The {} function requires {} argument(s)."},
    MessageText{
        191, 15, 1, Ends::Batch,
        "Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
        "up into smaller queries."},
    MessageText{195, 15, 10, Ends::Batch, "'{}' is not a recognized built-in function name."},
    MessageText{201, 16, 4, Ends::Statement,
                "Procedure or function '{}' expects parameter '{}', which was not supplied."},
    MessageText{
        205, 16, 1, Ends::Batch,
        "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal "
        "number of expressions in their target lists."},
    MessageText{206, 16, 2, Ends::Batch, "Operand type clash: {} is incompatible with {}"},
    MessageText{207, 16, 1, Ends::Batch, "Invalid column name '{}'."},
    MessageText{208, 16, 1, Ends::Batch, "Invalid object name '{}'."},
    MessageText{209, 16, 1, Ends::Batch, "Ambiguous column name '{}'."},
    MessageText{213, 16, 1, Ends::Batch,
                "Column name or number of supplied values does not match table definition."},
    MessageText{214, 16, 2, Ends::Statement, "Procedure expects parameter '{}' of type '{}'."},
    MessageText{219, 16, 1, Ends::Batch,
                "The type '{}' already exists, or you do not have permission to create it."},
    MessageText{220, 16, 2, Ends::Statement,
                "Arithmetic overflow error for data type {}, value = {}."},
    MessageText{232, 16, 3, Ends::Statement, "Arithmetic overflow error for type {}, value = {}."},
    MessageText{235, 16, 0, Ends::Transaction,
                "Cannot convert a char value to money. The char value has incorrect syntax."},
    MessageText{241, 16, 1, Ends::Transaction,
                "Conversion failed when converting date and/or time from character string."},
    MessageText{242, 16, 3, Ends::Statement,
                "The conversion of a {} data type to a {} data type resulted in an out-of-range "
                "value."},
    MessageText{244, 16, 1, Ends::Statement,
                "The conversion of the {} value '{}' overflowed an {} column. Use a larger integer "
                "column."},
    MessageText{245, 16, 1, Ends::Transaction,
                "Conversion failed when converting the {} value '{}' to data type {}."},
    MessageText{248, 16, 1, Ends::Statement,
                "The conversion of the {} value '{}' overflowed an int column."},
    MessageText{
        257, 16, 3, Ends::Batch,
        "Implicit conversion from data type {} to {} is not allowed. Use the CONVERT function "
        "to run this query."},
    MessageText{
        264, 16, 1, Ends::Batch,
        "The column name '{}' is specified more than once in the SET clause or column list of "
        "an INSERT. A column cannot be assigned more than one value in the same clause. "
        "Modify the clause to make sure that a column is updated only once. If this statement "
        "updates or inserts columns into a view, column aliasing can conceal the duplication "
        "in your code."},
    MessageText{271, 16, 1, Ends::Batch,
                "The column \"{}\" cannot be modified because it is either a computed column or is "
                "the result of a UNION operator."},
    MessageText{272, 16, 1, Ends::Batch, "Cannot update a timestamp column."},
    MessageText{
        273, 16, 1, Ends::Batch,
        "Cannot insert an explicit value into a timestamp column. Use INSERT with a column "
        "list to exclude the timestamp column, or insert a DEFAULT into the timestamp column."},
    MessageText{402, 16, 1, Ends::Batch,
                "The data types {} and {} are incompatible in the {} operator."},
    MessageText{448, 16, 1, Ends::Batch, "Invalid collation '{}'."},
    MessageText{
        512, 16, 1, Ends::Statement,
        "Subquery returned more than 1 value. This is not permitted when the subquery follows "
        "=, !=, <, <= , >, >= or when the subquery is used as an expression."},
    MessageText{515, 16, 2, Ends::Statement,
                "Cannot insert the value NULL into column '{}', table '{}'; column does not allow "
                "nulls. {} fails."},
    MessageText{529, 16, 2, Ends::Batch,
                "Explicit conversion from data type {} to {} is not allowed."},
    MessageText{
        544, 16, 1, Ends::Statement,
        "Cannot insert explicit value for identity column in table '{}' when IDENTITY_INSERT "
        "is set to OFF."},
    MessageText{
        545, 16, 1, Ends::Statement,
        "Explicit value must be specified for identity column in table '{}' either when "
        "IDENTITY_INSERT is set to ON or when a replication user is inserting into a NOT FOR "
        "REPLICATION identity column."},
    MessageText{
        547, 16, 0, Ends::Statement,
        "The {} statement conflicted with the {} constraint \"{}\". The conflict occurred in "
        "database \"{}\", table \"{}\"{}."},
    MessageText{911, 16, 1, Ends::Batch,
                "Database '{}' does not exist. Make sure that the name is entered correctly."},
    MessageText{1007, 15, 1, Ends::Batch,
                "The number '{}' is out of the range for numeric representation (maximum precision "
                "38)."},
    MessageText{1013, 16, 1, Ends::Batch,
                "The objects \"{}\" and \"{}\" in the FROM clause have the same exposed names. Use "
                "correlation names to distinguish them."},
    MessageText{1038, 15, 4, Ends::Batch,
                "An object or column name is missing or empty. For SELECT INTO statements, verify "
                "each column has a name. For other statements, look for empty alias names. Aliases "
                "defined as \"\" or [] are not allowed. Change the alias to a valid name."},
    MessageText{1088, 16, 12, Ends::Batch,
                "Cannot find the object \"{}\" because it does not exist or you do not have "
                "permissions."},
    MessageText{1222, 16, 51, Ends::Statement, "Lock request time out period exceeded."},
    MessageText{
        1505, 16, 1, Ends::Statement,
        "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for "
        "the object name '{}' and the index name '{}'. The duplicate key value is ({})."},
    MessageText{1701, 16, 1, Ends::Batch,
                "Creating or altering table '{}' failed because the minimum row size would be {}, "
                "including {} bytes of internal overhead. This exceeds the maximum allowable table "
                "row size of {} bytes."},
    MessageText{1702, 16, 1, Ends::Batch,
                "CREATE TABLE failed because column '{}' in table '{}' exceeds the maximum of {} "
                "columns."},
    MessageText{1750, 16, 0, Ends::Batch,
                "Could not create constraint or index. See previous errors."},
    MessageText{
        1753, 16, 0, Ends::Batch,
        "Column '{}.{}' is not the same length or scale as referencing column '{}.{}' in "
        "foreign key '{}'. Columns participating in a foreign key relationship must be defined "
        "with the same length and scale."},
    MessageText{1757, 16, 0, Ends::Batch,
                "Column '{}.{}' is not of same collation as referencing column '{}.{}' in foreign "
                "key '{}'."},
    MessageText{1759, 16, 0, Ends::Batch,
                "Computed column '{}' in table '{}' is not allowed to be used in another "
                "computed-column definition."},
    MessageText{
        1761, 16, 1, Ends::Batch,
        "Cannot create the foreign key \"{}\" with the SET NULL referential action, because "
        "one or more referencing columns are not nullable."},
    MessageText{1767, 16, 0, Ends::Batch, "Foreign key '{}' references invalid table '{}'."},
    MessageText{1769, 16, 1, Ends::Batch,
                "Foreign key '{}' references invalid column '{}' in referencing table '{}'."},
    MessageText{1770, 16, 0, Ends::Batch,
                "Foreign key '{}' references invalid column '{}' in referenced table '{}'."},
    MessageText{
        1773, 16, 0, Ends::Batch,
        "Foreign key '{}' has implicit reference to object '{}' which does not have a primary "
        "key defined on it."},
    MessageText{
        1776, 16, 0, Ends::Batch,
        "There are no primary or candidate keys in the referenced table '{}' that match the "
        "referencing column list in the foreign key '{}'."},
    MessageText{
        1778, 16, 0, Ends::Batch,
        "Column '{}.{}' is not the same data type as referencing column '{}.{}' in foreign key "
        "'{}'."},
    MessageText{1779, 16, 0, Ends::Batch, "Table '{}' already has a primary key defined on it."},
    MessageText{
        1785, 16, 0, Ends::Batch,
        "Introducing FOREIGN KEY constraint '{}' on table '{}' may cause cycles or multiple "
        "cascade paths. Specify ON DELETE NO ACTION or ON UPDATE NO ACTION, or modify other "
        "FOREIGN KEY constraints."},
    MessageText{1801, 16, 3, Ends::Batch,
                "Database '{}' already exists. Choose a different database name."},
    MessageText{
        1902, 16, 3, Ends::Batch,
        "Cannot create more than one clustered index on {} '{}'. Drop the existing clustered "
        "index '{}' before creating another."},
    MessageText{1909, 16, 1, Ends::Batch,
                "Cannot use duplicate column names in {}. Column name '{}' listed more than once."},
    MessageText{1911, 16, 1, Ends::Batch,
                "Column name '{}' does not exist in the target table or view."},
    MessageText{
        1913, 16, 1, Ends::Batch,
        "The operation failed because an index or statistics with name '{}' already exists on "
        "table '{}'."},
    MessageText{
        1919, 16, 1, Ends::Batch,
        "Column '{}' in table '{}' is of a type that is invalid for use as a key column in an "
        "index."},
    MessageText{1944, 16, 1, Ends::Batch,
                "Index '{}' was not created. This index has a key length of at least {} bytes. The "
                "maximum permissible key length is {} bytes."},
    MessageText{1946, 16, 3, Ends::Statement,
                "Operation failed. The index entry of length {} bytes for the index '{}' exceeds "
                "the maximum length of {} bytes for {} indexes."},
    MessageText{2501, 16, 45, Ends::Statement,
                "Cannot find a table or object with the name \"{}\". Check the system catalog."},
    MessageText{
        2601, 14, 1, Ends::Statement,
        "Cannot insert duplicate key row in object '{}' with unique index '{}'. The duplicate "
        "key value is ({})."},
    MessageText{2627, 14, 1, Ends::Statement,
                "Violation of {} constraint '{}'. Cannot insert duplicate key in object '{}'. The "
                "duplicate key value is ({})."},
    MessageText{2628, 16, 1, Ends::Statement,
                "String or binary data would be truncated in table '{}', column '{}'. Truncated "
                "value: '{}'."},
    MessageText{2705, 16, 3, Ends::Batch,
                "Column names in each table must be unique. Column name '{}' in table '{}' is "
                "specified more than once."},
    MessageText{2714, 16, 6, Ends::Batch, "There is already an object named '{}' in the database."},
    MessageText{2715, 16, 6, Ends::Batch,
                "Column, parameter, or variable #{}: Cannot find data type {}."},
    MessageText{
        2716, 16, 1, Ends::Batch,
        "Column, parameter, or variable #{}: Cannot specify a column width on data type {}."},
    MessageText{2717, 16, 2, Ends::Batch,
                "The size ({}) given to the {} '{}' exceeds the maximum allowed ({})."},
    MessageText{2727, 11, 1, Ends::Batch, "Cannot find index '{}'."},
    MessageText{
        2738, 16, 2, Ends::Batch,
        "A table can only have one timestamp column. Because table '{}' already has one, the "
        "column '{}' cannot be added."},
    MessageText{2744, 16, 2, Ends::Batch,
                "Multiple identity columns specified for table '{}'. Only one identity column per "
                "table is allowed."},
    MessageText{
        2749, 16, 2, Ends::Batch,
        "Identity column '{}' must be of data type int, bigint, smallint, tinyint, or decimal "
        "or numeric with a scale of 0, unencrypted, and constrained to be nonnullable."},
    MessageText{
        2750, 16, 1, Ends::Batch,
        "Column or parameter #{}: Specified column precision {} is greater than the maximum "
        "precision of 38."},
    MessageText{2751, 16, 1, Ends::Batch,
                "Column or parameter #{}: Specified column scale {} is greater than the specified "
                "precision of {}."},
    MessageText{2760, 16, 1, Ends::Batch,
                "The specified schema name \"{}\" either does not exist or you do not have "
                "permission to use it."},
    MessageText{2812, 16, 62, Ends::Statement, "Could not find stored procedure '{}'."},
    MessageText{3621, 0, 0, Ends::Statement, "The statement has been terminated."},
    MessageText{3701, 11, 5, Ends::Statement,
                "Cannot {} the {} '{}', because it does not exist or you do not have permission."},
    MessageText{3702, 16, 3, Ends::Statement,
                "Cannot drop database \"{}\" because it is currently in use."},
    MessageText{3708, 16, 1, Ends::Statement,
                "Cannot drop the database '{}' because it is a system database."},
    MessageText{
        3725, 16, 0, Ends::Batch,
        "The constraint '{}' is being referenced by table '{}', foreign key constraint '{}'."},
    MessageText{3726, 16, 1, Ends::Batch,
                "Could not drop object '{}' because it is referenced by a FOREIGN KEY constraint."},
    MessageText{3727, 16, 0, Ends::Batch, "Could not drop constraint. See previous errors."},
    MessageText{3728, 16, 1, Ends::Batch, "'{}' is not a constraint."},
    MessageText{3902, 16, 1, Ends::Statement,
                "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    MessageText{3903, 16, 1, Ends::Statement,
                "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    MessageText{4104, 16, 1, Ends::Batch, "The multi-part identifier \"{}\" could not be bound."},
    MessageText{4145, 15, 1, Ends::Batch,
                "An expression of non-boolean type specified in a context where a condition is "
                "expected, near '{}'."},
    MessageText{4701, 16, 1, Ends::Batch,
                "Cannot find the object \"{}\" because it does not exist or you do not have "
                "permissions."},
    MessageText{4712, 16, 1, Ends::Batch,
                "Cannot truncate table '{}' because it is being referenced by a FOREIGN KEY "
                "constraint."},
    MessageText{
        4901, 16, 1, Ends::Batch,
        "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT "
        "definition specified, or the column being added is an identity or timestamp column, "
        "or alternatively if none of the previous conditions are satisfied the table must be "
        "empty to allow addition of this column. Column '{}' cannot be added to non-empty "
        "table '{}' because it does not satisfy these conditions."},
    MessageText{4902, 16, 1, Ends::Batch,
                "Cannot find the object \"{}\" because it does not exist or you do not have "
                "permissions."},
    MessageText{4916, 16, 0, Ends::Batch,
                "Could not enable or disable the constraint. See previous errors."},
    MessageText{4917, 16, 0, Ends::Batch, "Constraint '{}' does not exist."},
    MessageText{4936, 16, 1, Ends::Batch,
                "Computed column '{}' in table '{}' cannot be persisted because the column is "
                "non-deterministic."},
    MessageText{5701, 10, 2, Ends::Statement, "Changed database context to '{}'."},
    MessageText{7997, 16, 1, Ends::Statement, "'{}' does not contain an identity column."},
    MessageText{
        8101, 16, 1, Ends::Statement,
        "An explicit value for the identity column in table '{}' can only be specified when a "
        "column list is used and IDENTITY_INSERT is ON."},
    MessageText{8102, 16, 1, Ends::Batch, "Cannot update identity column '{}'."},
    MessageText{8106, 16, 1, Ends::Statement,
                "Table '{}' does not have the identity property. Cannot perform SET operation."},
    MessageText{
        8107, 16, 1, Ends::Statement,
        "IDENTITY_INSERT is already ON for table '{}'. Cannot perform SET operation for table "
        "'{}'."},
    MessageText{8110, 16, 0, Ends::Batch,
                "Cannot add multiple PRIMARY KEY constraints to table '{}'."},
    MessageText{8111, 16, 1, Ends::Batch,
                "Cannot define PRIMARY KEY constraint on nullable column in table '{}'."},
    MessageText{8112, 16, 0, Ends::Batch,
                "Cannot add more than one clustered index for constraints on table '{}'."},
    MessageText{8114, 16, 5, Ends::Transaction, "Error converting data type {} to {}."},
    MessageText{8115, 16, 2, Ends::Statement,
                "Arithmetic overflow error converting {} to data type {}."},
    MessageText{8117, 16, 1, Ends::Batch, "Operand data type {} is invalid for {} operator."},
    MessageText{
        8120, 16, 1, Ends::Batch,
        "Column '{}' is invalid in the select list because it is not contained in either an "
        "aggregate function or the GROUP BY clause."},
    MessageText{8134, 16, 1, Ends::Statement, "Divide by zero error encountered."},
    MessageText{8144, 16, 2, Ends::Statement,
                "Procedure or function {} has too many arguments specified."},
    MessageText{8145, 16, 1, Ends::Statement, "{} is not a parameter for procedure {}."},
    MessageText{8155, 16, 2, Ends::Batch, "No column name was specified for column {} of '{}'."},
    MessageText{8156, 16, 1, Ends::Batch, "The column '{}' was specified multiple times for '{}'."},
    MessageText{8169, 16, 2, Ends::Transaction,
                "Conversion failed when converting from a character string to uniqueidentifier."},
    MessageText{10601, 16, 1, Ends::Batch,
                "Cannot specify included columns for a clustered index."},
    MessageText{
        10709, 16, 1, Ends::Batch,
        "The number of columns for each row in a table value constructor must be the same."},
    MessageText{10735, 15, 1, Ends::Batch,
                "Incorrect WHERE clause for filtered index '{}' on table '{}'."},
    MessageText{10738, 15, 1, Ends::Batch,
                "The number of row value expressions in the INSERT statement exceeds the maximum "
                "allowed number of 1000 row values."},
    MessageText{13536, 16, 1, Ends::Batch,
                "Cannot insert an explicit value into a GENERATED ALWAYS column in table '{}'. Use "
                "INSERT with a column list to exclude the GENERATED ALWAYS column, or insert a "
                "DEFAULT into GENERATED ALWAYS column."},
    MessageText{13537, 16, 1, Ends::Batch, "Cannot update GENERATED ALWAYS columns in table '{}'."},
    MessageText{15007, 16, 1, Ends::Batch,
                "'{}' is not a valid login or you do not have permission."},
    MessageText{
        15009, 16, 1, Ends::Statement,
        "The object '{}' does not exist in database '{}' or is invalid for this operation."},
    MessageText{15023, 16, 1, Ends::Batch,
                "User, group, or role '{}' already exists in the current database."},
    MessageText{15025, 16, 1, Ends::Batch, "The server principal '{}' already exists."},
    MessageText{15034, 16, 1, Ends::Statement, "The storage failed: {}"},
    MessageText{15135, 16, 8, Ends::Statement,
                "Object is invalid. Extended properties are not permitted on '{}', or the object "
                "does not exist."},
    MessageText{15233, 16, 1, Ends::Statement,
                "Property cannot be added. Property '{}' already exists for '{}'."},
};
static_assert(std::ranges::adjacent_find(kMessages, std::ranges::greater_equal(),
                                         &MessageText::number) == kMessages.end(),
              "the numbers ascend");

/// The entry of a number; null when there is none.
constexpr const MessageText* FindMessage(int number) {
  const auto* found = std::ranges::lower_bound(kMessages, number, {}, &MessageText::number);
  return found != kMessages.end() && found->number == number ? found : nullptr;
}

}  // namespace sandbox
